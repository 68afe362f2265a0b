// The page of the service, as host/web builds it.
#ifndef ORSOLVA_LIVE_SERVING_LIVE_PAGE_H
#define ORSOLVA_LIVE_SERVING_LIVE_PAGE_H

#include <string_view>

namespace orsolva_host::live {

std::string_view LivePage();

}  // namespace orsolva_host::live

#endif  // ORSOLVA_LIVE_SERVING_LIVE_PAGE_H
