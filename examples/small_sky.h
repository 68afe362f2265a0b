/* Something to judge: a day of a receiver that observes GPS satellites on circular orbits.
 *
 * The examples need observations and have no files to read. Orbits, broadcast records and ranges agree with
 * each other; there is no atmosphere and no clock error. For C and C++. */
#ifndef ORSOLVA_EXAMPLES_SMALL_SKY_H
#define ORSOLVA_EXAMPLES_SMALL_SKY_H

#include <orsolva/orsolva_c.h>

#ifdef __cplusplus
extern "C" {
#endif

#define SMALL_SKY_SATELLITES 24
#define SMALL_SKY_RECORDS (13 * SMALL_SKY_SATELLITES) /* one per satellite every two hours */
#define SMALL_SKY_INTERVAL_S 30
#define SMALL_SKY_EPOCHS 2880

/* Where the receiver is, ECEF in metres. */
extern const double small_sky_station_m[3];

/* Fills SMALL_SKY_RECORDS broadcast records. */
void small_sky_navigation(GpsEph_gbt* records);

/* Fills epoch number `index`, 0 to SMALL_SKY_EPOCHS - 1: 1C and 2W of every satellite above 5 degrees. */
void small_sky_epoch(int index, ObsEpoch_QC_gbt* epoch);

#ifdef __cplusplus
}
#endif

#endif /* ORSOLVA_EXAMPLES_SMALL_SKY_H */
