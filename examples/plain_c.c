/* The same library from plain C, through liborsolva_c: judges two hours and prints the figures of GPS. */
#include <orsolva/orsolva_c.h>
#include <stdio.h>
#include <stdlib.h>

#include "small_sky.h"

enum { EPOCHS = 240 };

static orsolva_status judge(const NavBodyData_QC_gbt* navigation, const ObsEpoch_QC_gbt* epochs,
                            result_qct* result) {
  /* [run] */
  config_qct config;
  orsolva_status status = ORSOLVA_NO_MEMORY;
  orsolva_session* session = orsolva_create();
  if (session == NULL) return status;
  status = orsolva_config_init(&config, sizeof config);
  config.interval = SMALL_SKY_INTERVAL_S;
  if (status == ORSOLVA_OK) {
    status = orsolva_start(session, &config, sizeof config, navigation, sizeof *navigation);
  }
  if (status == ORSOLVA_OK) status = orsolva_feed(session, epochs, EPOCHS, sizeof epochs[0]);
  if (status == ORSOLVA_OK) status = orsolva_result(session, result, sizeof *result);
  orsolva_destroy(session);
  return status;
  /* [run] */
}

int main(void) {
  static GpsEph_gbt records[SMALL_SKY_RECORDS];
  static result_qct result;
  ObsEpoch_QC_gbt* epochs = malloc(EPOCHS * sizeof *epochs);
  NavBodyData_QC_gbt navigation = {0};
  orsolva_status status;
  int i;
  if (epochs == NULL) return 1;
  small_sky_navigation(records);
  navigation.gps_num = SMALL_SKY_RECORDS;
  navigation.gps_eph = records;
  for (i = 0; i < EPOCHS; ++i) small_sky_epoch(i, &epochs[i]);
  status = judge(&navigation, epochs, &result);
  free(epochs);
  printf("library %s: %s\n", orsolva_version(), orsolva_status_text(status));
  if (status != ORSOLVA_OK) return 1;
  printf("GPS: %.2f %% of the expected observations, station at %.0f %.0f %.0f m\n",
         100.0 * result.sys[0].completeness, result.station_xyz[0], result.station_xyz[1],
         result.station_xyz[2]);
  return 0;
}
