// The library's figures: how each is taken from the result records, and its row.
#ifndef ORSOLVA_REPORT_LIBRARY_FIGURES_H
#define ORSOLVA_REPORT_LIBRARY_FIGURES_H

#include <vector>

#include "host/report/figure_rows.h"
#include "host/report/report.h"
#include "host/rinex/satellite_names.h"

struct qc_core_summary;
struct code_qc_entry;

namespace orsolva_host {

/// The figures of a summary, where a count of nothing expected, a mean or RMS of exactly 0 and whatever is
/// not finite mean no data.
/// @param system  code of the system whose band names apply; 0 for a mix of systems
Figures FiguresOf(const qc_core_summary& summary, int system);

/// The figures of one signal, with the same rules.
SignalReport SignalOf(const SystemRow& system, const code_qc_entry& entry);

/// Whether an entry holds any figure.
bool HasData(const code_qc_entry& entry);

std::vector<FigureRow<Figures>> WholeRows();
std::vector<FigureRow<BandFigures>> BandRows();
std::vector<FigureRow<Figures>> TotalRows();
std::vector<FigureRow<BandFigures>> SlotRows();
std::vector<FigureRow<SignalReport>> SignalRows();

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_LIBRARY_FIGURES_H
