#include "host/live/serving/live_page.h"

#include "host/output/embedded_file.h"

ORSOLVA_EMBED("orsolva_live_page", ORSOLVA_PAGES "/live.html");

extern "C" const char orsolva_live_page_begin[];
extern "C" const char orsolva_live_page_end[];

namespace orsolva_host::live {

std::string_view LivePage() {
  return {orsolva_live_page_begin, static_cast<std::size_t>(orsolva_live_page_end - orsolva_live_page_begin)};
}

}  // namespace orsolva_host::live
