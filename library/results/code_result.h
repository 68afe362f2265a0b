// Figures per signal code: of one satellite, and pooled over a system.
#ifndef ORSOLVA_RESULTS_CODE_RESULT_H
#define ORSOLVA_RESULTS_CODE_RESULT_H

#include "orsolva/records.h"
#include "qc/base/config.h"
#include "results/satellite_figures.h"
#include "toolkit/lists.h"

namespace orsolva {

/// Entries of a block; further codes are left out.
inline constexpr int kEntriesPerBlock = 8;

/// The block of one satellite: its system and an entry for every code in an enabled band that has flags.
/// @param config  row of the satellite's system
void FillSatelliteBlock(const QcSysConfig& config, const SatelliteStores& stores, code_qc_block& block);

/// Names the system and the codes of a block.
/// @param codes  the first eight are taken
void StartSystemBlock(int system, const gnssqctoolkit::IList& codes, code_qc_block& block);

/// Adds the entries of a satellite to those of its system that have the same code.
void AbsorbSatellite(const code_qc_block& satellite, code_qc_block& system);

/// The codes of a system in the order of the channel slots, without bands that are not enabled or have no
/// slot. Within a slot their order stays.
gnssqctoolkit::IList RegroupCodes(const QcSysConfig& config, int system, const gnssqctoolkit::IList& codes);

}  // namespace orsolva

#endif  // ORSOLVA_RESULTS_CODE_RESULT_H
