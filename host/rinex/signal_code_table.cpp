// The observation codes of the library's five systems, one a line: system, number, band slot, name.
//
// Names and bands: RINEX 3.05, tables 4 to 9. The numbers and band slots are the library's; this copy
// is the host's own, as an outside user of the library would keep it.
#include "host/rinex/signal_codes.h"

#include "host/rinex/satellite_names.h"

namespace orsolva_host {

// A number that stands twice has its current name first.
const SignalCodeRow kSignalCodeTable[] = {
    {kGps, 1, 1, "1C"},      {kGps, 2, 1, "1S"},      {kGps, 3, 1, "1L"},      {kGps, 4, 1, "1X"},
    {kGps, 5, 1, "1P"},      {kGps, 6, 1, "1W"},      {kGps, 7, 1, "1Y"},      {kGps, 8, 1, "1M"},
    {kGps, 9, 1, "1N"},      {kGps, 10, 2, "2C"},     {kGps, 11, 2, "2D"},     {kGps, 12, 2, "2S"},
    {kGps, 13, 2, "2L"},     {kGps, 14, 2, "2X"},     {kGps, 15, 2, "2P"},     {kGps, 16, 2, "2W"},
    {kGps, 17, 2, "2Y"},     {kGps, 18, 2, "2M"},     {kGps, 19, 2, "2N"},     {kGps, 20, 3, "5I"},
    {kGps, 21, 3, "5Q"},     {kGps, 22, 3, "5X"},     {kGlonass, 30, 1, "1C"}, {kGlonass, 31, 1, "1P"},
    {kGlonass, 32, 4, "4A"}, {kGlonass, 33, 4, "4B"}, {kGlonass, 34, 4, "4X"}, {kGlonass, 35, 2, "2C"},
    {kGlonass, 36, 2, "2P"}, {kGlonass, 37, 5, "6A"}, {kGlonass, 38, 5, "6B"}, {kGlonass, 39, 5, "6X"},
    {kGlonass, 40, 3, "3I"}, {kGlonass, 41, 3, "3Q"}, {kGlonass, 42, 3, "3X"}, {kGalileo, 60, 1, "1A"},
    {kGalileo, 61, 1, "1B"}, {kGalileo, 62, 1, "1C"}, {kGalileo, 63, 1, "1X"}, {kGalileo, 64, 1, "1Z"},
    {kGalileo, 65, 2, "5I"}, {kGalileo, 66, 2, "5Q"}, {kGalileo, 67, 2, "5X"}, {kGalileo, 68, 3, "7I"},
    {kGalileo, 69, 3, "7Q"}, {kGalileo, 70, 3, "7X"}, {kGalileo, 71, 4, "8I"}, {kGalileo, 72, 4, "8Q"},
    {kGalileo, 73, 4, "8X"}, {kGalileo, 74, 5, "6A"}, {kGalileo, 75, 5, "6B"}, {kGalileo, 76, 5, "6C"},
    {kGalileo, 77, 5, "6X"}, {kGalileo, 78, 5, "6Z"}, {kQzss, 120, 1, "1C"},   {kQzss, 121, 1, "1E"},
    {kQzss, 122, 1, "1S"},   {kQzss, 123, 1, "1L"},   {kQzss, 124, 1, "1X"},   {kQzss, 125, 1, "1Z"},
    {kQzss, 126, 1, "1B"},   {kQzss, 127, 2, "2S"},   {kQzss, 128, 2, "2L"},   {kQzss, 129, 2, "2X"},
    {kQzss, 130, 3, "5I"},   {kQzss, 131, 3, "5Q"},   {kQzss, 132, 3, "5X"},   {kQzss, 133, 3, "5D"},
    {kQzss, 134, 3, "5P"},   {kQzss, 135, 3, "5Z"},   {kQzss, 136, 4, "6S"},   {kQzss, 137, 4, "6L"},
    {kQzss, 138, 4, "6X"},   {kQzss, 139, 4, "6E"},   {kQzss, 140, 4, "6Z"},   {kBds, 150, 1, "2I"},
    {kBds, 151, 1, "2Q"},    {kBds, 152, 1, "2X"},    {kBds, 150, 1, "1I"},    {kBds, 151, 1, "1Q"},
    {kBds, 153, 4, "1D"},    {kBds, 154, 4, "1P"},    {kBds, 155, 4, "1X"},    {kBds, 156, 4, "1S"},
    {kBds, 157, 4, "1L"},    {kBds, 158, 4, "1Z"},    {kBds, 159, 4, "1A"},    {kBds, 160, 4, "1N"},
    {kBds, 161, 5, "5D"},    {kBds, 162, 5, "5P"},    {kBds, 163, 5, "5X"},    {kBds, 164, 2, "7I"},
    {kBds, 165, 2, "7Q"},    {kBds, 166, 2, "7X"},    {kBds, 167, 6, "7D"},    {kBds, 168, 6, "7P"},
    {kBds, 169, 6, "7Z"},    {kBds, 170, 3, "8D"},    {kBds, 171, 3, "8P"},    {kBds, 172, 3, "8X"},
    {kBds, 173, 3, "6I"},    {kBds, 174, 3, "6Q"},    {kBds, 175, 3, "6X"},    {kBds, 179, 3, "6A"},
    {kBds, 176, 3, "6D"},    {kBds, 177, 3, "6P"},    {kBds, 178, 3, "6Z"},
};

const int kSignalCodes = sizeof kSignalCodeTable / sizeof kSignalCodeTable[0];

}  // namespace orsolva_host
