// What is made from the rows of the figures and committed: their part of the JSON schema, and the types and
// table columns of the page. A test holds the committed files against these.
#ifndef ORSOLVA_REPORT_FIGURE_TYPES_H
#define ORSOLVA_REPORT_FIGURE_TYPES_H

#include <string>
#include <vector>

#include "host/report/figure_tables.h"
#include "host/report/figures.h"

namespace orsolva_host {

/// The schema with the definitions "..._figures" replaced by those of the rows; everything else stays.
/// @param schema  docs/user/report.schema.json
std::string SchemaWithFigures(const std::string& schema, const FigureTables& tables = AllFigures());

/// host/web/src/figures.ts: an interface and the columns of every scope.
std::string PageTypes(const FigureTables& tables = AllFigures(),
                      const std::vector<Figure>& texts = FigureTexts());

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_FIGURE_TYPES_H
