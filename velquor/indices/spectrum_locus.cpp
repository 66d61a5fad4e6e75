#include "velquor/indices/spectrum_locus.h"

namespace velquor {

namespace {

// x, y in ten-thousandths; point j is 400 + 10 j nm, point 31 closes the polygon.
constexpr RawSpectrumLocus kLocus2Degree = {{
    {1738, 52},    // 400 nm
    {1730, 46},    // 410 nm
    {1714, 50},    // 420 nm
    {1688, 69},    // 430 nm
    {1644, 109},   // 440 nm
    {1566, 177},   // 450 nm
    {1440, 296},   // 460 nm
    {1243, 577},   // 470 nm
    {915, 1317},   // 480 nm
    {453, 2943},   // 490 nm
    {73, 5407},    // 500 nm
    {144, 7511},   // 510 nm
    {749, 8321},   // 520 nm
    {1544, 8067},  // 530 nm
    {2296, 7543},  // 540 nm
    {3017, 6922},  // 550 nm
    {3730, 6245},  // 560 nm
    {4443, 5545},  // 570 nm
    {5124, 4867},  // 580 nm
    {5750, 4243},  // 590 nm
    {6272, 3723},  // 600 nm
    {6656, 3341},  // 610 nm
    {6914, 3085},  // 620 nm
    {7080, 2920},  // 630 nm
    {7192, 2808},  // 640 nm
    {7260, 2740},  // 650 nm
    {7300, 2700},  // 660 nm
    {7322, 2678},  // 670 nm
    {7333, 2667},  // 680 nm
    {7356, 2644},  // 690 nm
    {7379, 2621},  // 700 nm
    {1738, 52},    // closing: 400 nm again
}};

constexpr RawSpectrumLocus kLocus10Degree = {{
    {1796, 183},   // 400 nm
    {1754, 179},   // 410 nm
    {1706, 179},   // 420 nm
    {1651, 202},   // 430 nm
    {1589, 258},   // 440 nm
    {1511, 364},   // 450 nm
    {1390, 585},   // 460 nm
    {1153, 1096},  // 470 nm
    {728, 2287},   // 480 nm
    {213, 4407},   // 490 nm
    {61, 6745},    // 500 nm
    {495, 8011},   // 510 nm
    {1256, 8106},  // 520 nm
    {2065, 7670},  // 530 nm
    {2787, 7112},  // 540 nm
    {3474, 6501},  // 550 nm
    {4143, 5857},  // 560 nm
    {4790, 5210},  // 570 nm
    {5385, 4615},  // 580 nm
    {5898, 4102},  // 590 nm
    {6306, 3694},  // 600 nm
    {6611, 3389},  // 610 nm
    {6825, 3175},  // 620 nm
    {6957, 3043},  // 630 nm
    {7058, 2942},  // 640 nm
    {7136, 2864},  // 650 nm
    {7169, 2831},  // 660 nm
    {7188, 2812},  // 670 nm
    {7192, 2808},  // 680 nm
    {7202, 2798},  // 690 nm
    {7202, 2798},  // 700 nm
    {1796, 183},   // closing: 400 nm again
}};

// Slot 0 is the 2 degree table, slot 1 the 10 degree table.
constexpr std::size_t TableSlot(int observer) {
  return observer == 0 ? 0 : 1;
}

}  // namespace

const RawSpectrumLocus& RawSpectrumLocusTable(int observer) {
  return TableSlot(observer) == 0 ? kLocus2Degree : kLocus10Degree;
}

SpectrumLocus ConvertSpectrumLocus(int observer) {
  const RawSpectrumLocus& raw = RawSpectrumLocusTable(observer);
  SpectrumLocus points{};
  for (std::size_t j = 0; j < kLocusPointCount; ++j) {
    points[j].x = raw[j][0] * kLocusUnit;
    points[j].y = raw[j][1] * kLocusUnit;
  }
  return points;
}

const SpectrumLocus& SpectrumLocusCache::Get(int observer) {
  Slot& slot = slots_[TableSlot(observer)];
  std::call_once(slot.once, [&] {
    slot.points = ConvertSpectrumLocus(observer);
    builds_.fetch_add(1, std::memory_order_acq_rel);
  });
  return slot.points;
}

const SpectrumLocus& GetSpectrumLocus(int observer) {
  // Created on first use and never destroyed, so references stay valid during static
  // destruction too.
  static SpectrumLocusCache* const cache = new SpectrumLocusCache;
  return cache->Get(observer);
}

}  // namespace velquor
