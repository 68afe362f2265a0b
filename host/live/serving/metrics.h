// The stations as metrics for Prometheus and what reads its format.
#ifndef ORSOLVA_LIVE_SERVING_METRICS_H
#define ORSOLVA_LIVE_SERVING_METRICS_H

#include <string>
#include <vector>

#include "host/live/live_board.h"

namespace orsolva_host::live {

/// Content types of the two formats.
extern const char* const kPlainMetricsType;
extern const char* const kOpenMetricsType;

/// All metrics in the text format of Prometheus 0.0.4, 100 to 200 series per station and none per satellite.
/// Families that have no value yet are absent.
std::string MetricsText(const std::vector<LiveBoard::StatePointer>& stations);

/// The same as OpenMetrics 1.0, which names a counter's family without its "_total" and ends with "# EOF".
/// @param plain  from MetricsText()
std::string OpenMetricsText(const std::string& plain);

/// Whether a client that sends this field Accept reads OpenMetrics.
bool WantsOpenMetrics(const std::string& accept);

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_METRICS_H
