// Writes the network table as an HTML page whose rows lead to the pages of the files.
#ifndef ORSOLVA_REPORT_NETWORK_HTML_H
#define ORSOLVA_REPORT_NETWORK_HTML_H

#include <string>
#include <vector>

#include "host/report/network.h"

namespace orsolva_host {

struct NetworkHead {
  std::string library_version;
  std::string profile;  ///< its title; empty without one
};

/// The index page, in the order of the rows. It holds everything it shows and asks for nothing.
/// @param path  where the page will lie: links are relative to its folder
std::string NetworkHtml(const std::vector<NetworkRow>& rows, const NetworkHead& head, const std::string& path,
                        const FigureTables& tables = AllFigures());

/// A link from a page to a file: a relative reference (RFC 3986, 4.2) in which every byte but letters, digits
/// and "-._~/" is written as %XX, so that no name is taken for a scheme, a query or markup.
std::string LinkTo(const std::string& file, const std::string& page);

}  // namespace orsolva_host

#endif  // ORSOLVA_REPORT_NETWORK_HTML_H
