// Whole headers among the observations, as where files of a station were joined into one.
#ifndef ORSOLVA_RINEX_SPLICED_HEADER_H
#define ORSOLVA_RINEX_SPLICED_HEADER_H

#include <string>

#include "host/rinex/diagnostics.h"
#include "host/rinex/observation_body.h"
#include "host/rinex/observation_header.h"

namespace orsolva_host {

/// Whether the lines of an event or of a header without one say that what follows is of another form than the
/// header's: RINEX 2 against later versions, plain against CRINEX.
bool ChangesForm(const EpochBlock& block, const ObservationHeader& header);

/// The header of those lines. What it does not state of the station is that of the header before.
/// @throws FileError when it is none, or lists no observation types
ObservationHeader SplicedHeader(const EpochBlock& block, const ObservationHeader& before,
                                const std::string& file, Diagnostics& diagnostics);

}  // namespace orsolva_host

#endif  // ORSOLVA_RINEX_SPLICED_HEADER_H
