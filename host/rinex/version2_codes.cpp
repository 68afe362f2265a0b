// Codes: RINEX 2.11, table A1 and section 10.1; lettered ones as in RINEX 2.12.
//
// What RINEX 2 leaves open is resolved as converters do: P1 and P2 of GPS are tracked codelessly (1W, 2W), C2
// of GPS and QZSS is the civil signal with both components (2X), signals of Galileo and of band 5 are
// combined ones (X), those of BDS the in-phase component (I).
#include "host/rinex/version2_codes.h"

namespace orsolva_host {
namespace {

struct PseudorangeRow {
  char letter;
  const char* code;
  const char* signal;
};

constexpr PseudorangeRow kPseudoranges[] = {
    {'G', "C1", "1C"}, {'G', "P1", "1W"}, {'G', "C2", "2X"}, {'G', "P2", "2W"}, {'G', "C5", "5X"},
    {'G', "CA", "1C"}, {'G', "CB", "1X"}, {'G', "CC", "2X"},  //
    {'R', "C1", "1C"}, {'R', "P1", "1P"}, {'R', "C2", "2C"}, {'R', "P2", "2P"}, {'R', "C3", "3X"},
    {'R', "CA", "1C"}, {'R', "CD", "2C"},                                                           //
    {'E', "C1", "1X"}, {'E', "C5", "5X"}, {'E', "C7", "7X"}, {'E', "C8", "8X"}, {'E', "C6", "6X"},  //
    {'C', "C2", "2I"}, {'C', "C7", "7I"}, {'C', "C6", "6I"},                                        //
    {'J', "C1", "1C"}, {'J', "C2", "2X"}, {'J', "C5", "5X"}, {'J', "C6", "6X"}, {'J', "CA", "1C"},
    {'J', "CB", "1X"}, {'J', "CC", "2X"},
};

std::string_view PseudorangeSignal(char letter, char kind, char mark) {
  for (const PseudorangeRow& row : kPseudoranges) {
    if (row.letter == letter && row.code[0] == kind && row.code[1] == mark) return row.signal;
  }
  return {};
}

}  // namespace

int BandOfLettered(std::string_view code) {
  if (code.size() != 2) return 0;
  if (code[1] == 'A' || code[1] == 'B') return 1;
  return code[1] == 'C' || code[1] == 'D' ? 2 : 0;
}

Version2Signals SignalsOfVersion2(char letter, std::string_view code, bool lettered) {
  if (code.size() != 2) return {};
  const char kind = code[0];
  const char mark = code[1];
  if (kind == 'C' || kind == 'P') return {PseudorangeSignal(letter, kind, mark), {}};
  if (kind != 'L' && kind != 'D' && kind != 'S') return {};
  const std::string_view civil = PseudorangeSignal(letter, 'C', mark);
  const std::string_view precise = PseudorangeSignal(letter, 'P', mark);
  if (civil.empty() || precise.empty()) return {civil.empty() ? precise : civil, {}};
  if (lettered || mark == '2') return {precise, lettered ? std::string_view() : civil};
  return {civil, precise};
}

}  // namespace orsolva_host
