#include <fmt/format.h>

#include <cmath>
#include <cstring>
#include <thread>

#include "tests/truth/law_sky.h"
#include "tests/truth/proof.h"

namespace orsolva_test {
namespace {

constexpr int kThreads = 8;
constexpr int kQzss = 16;
constexpr double kWeekMove_m = 5;
constexpr double kMergeRounding = 1e-15;  // of a mean times its count, divided by it again, and of the root

/// The sky, its results in one batch, and where the outcome goes.
struct LawBench {
  LawSky sky;
  std::unique_ptr<Results> whole;
  Proof* proof;

  void Same(const Results* results, const char* law) const {
    proof->Check(results != nullptr && results->SameBits(*whole), law);
  }
};

using Law = void (*)(const LawBench& bench);

void AnySplit(const LawBench& bench) {
  for (const int longest : {1, 2, 13, 200}) {
    const auto split = RunLawSky(bench.sky, [longest](Process& process, const LawSky& sky) {
      return FeedSplit(process, sky, longest, 3, nullptr);
    });
    bench.Same(split.get(), "split into batches");
  }
}

void OrderInLaterEpochs(const LawBench& bench) {
  LawSky shuffled = bench.sky;
  ShuffleSatellites(shuffled, 1, 8);
  bench.Same(RunLawSky(shuffled, FeedWhole).get(), "order of satellites in later epochs");
}

bool SameEntries(const total_code_qc_result& a, const total_code_qc_result& b) {
  bool same = true;
  for (int s = 0; s < 5; ++s) {
    for (int prn = 1; prn <= 64; ++prn) {
      const code_qc_block& block = a.sat[s][prn - 1];
      same = same && block.count == b.sat[s][prn - 1].count;
      for (int k = 0; k < block.count; ++k) {
        const code_qc_entry* other = FindEntry(b, 1 << s, prn, block.entries[k].code);
        same = same && other != nullptr && std::memcmp(other, &block.entries[k], sizeof *other) == 0;
      }
    }
  }
  return same;
}

void OrderInTheFirstEpoch(const LawBench& bench) {
  LawSky shuffled = bench.sky;
  ShuffleSatellites(shuffled, 0, 9);
  const auto results = RunLawSky(shuffled, FeedWhole);
  bench.proof->Check(results && SameEntries(*results->Codes, *bench.whole->Codes),
                     "figures of satellites and codes with the first epoch shuffled");
}

void OrderWithComputedPosition(const LawBench& bench) {
  LawSky given = bench.sky;
  given.config.enable_position = 0;
  LawSky shuffled = given;
  ShuffleSatellites(shuffled, 1, 10);
  const auto a = RunLawSky(given, FeedWhole), b = RunLawSky(shuffled, FeedWhole);
  bench.proof->Check(a && b && a->SameBits(*b), "order of satellites with a computed position");
}

void WholeWeeks(const LawBench& bench) {
  for (const int weeks : {1, 26, -3}) {
    LawSky shifted = bench.sky;
    ShiftWeeks(shifted, weeks);
    const auto results = RunLawSky(shifted, FeedWhole);
    if (results) {
      bench.proof->Check(
          results->Whole->start_time.time == bench.whole->Whole->start_time.time + weeks * 604800LL,
          "first epoch of a run moved by weeks");
      results->Whole->start_time = bench.whole->Whole->start_time;
      results->Whole->end_time = bench.whole->Whole->end_time;
    }
    bench.Same(results.get(), "shift by whole weeks");
  }
}

void WholeWeeksWithComputedPosition(const LawBench& bench) {
  LawSky given = bench.sky;
  given.config.enable_position = 0;
  LawSky shifted = given;
  ShiftWeeks(shifted, 1);
  const auto a = RunLawSky(given, FeedWhole), b = RunLawSky(shifted, FeedWhole);
  double square = a && b ? 0.0 : HUGE_VAL;
  for (int i = 0; a && b && i < 3; ++i) {
    square += std::pow(a->Whole->station_xyz[i] - b->Whole->station_xyz[i], 2);
  }
  bench.proof->Check(std::sqrt(square) <= kWeekMove_m, "computed position a week later");
}

void EightThreads(const LawBench& bench) {
  LawSky computed = bench.sky;
  computed.config.enable_position = 0;
  std::vector<std::unique_ptr<Results>> results(kThreads + 1);
  const auto run = [&](std::size_t k) {
    results[k] = RunLawSky(computed, [](Process& process, const LawSky& sky) {
      return FeedSplit(process, sky, 40, 6, nullptr);
    });
  };
  run(kThreads);
  std::vector<std::thread> threads;
  for (std::size_t k = 0; k < kThreads; ++k) threads.emplace_back(run, k);
  for (std::thread& thread : threads) thread.join();
  for (std::size_t k = 0; k < kThreads; ++k) {
    const bool same = results[k] && results[kThreads] && results[k]->SameBits(*results[kThreads]);
    bench.proof->Check(same, "mirrored handles in eight threads");
  }
}

/// Makes two means equal that differ by the rounding of one merge.
bool TakeIfClose(double expected, double& value) {
  const bool close = std::fabs(value - expected) <= kMergeRounding * std::fabs(expected);
  if (close) value = expected;
  return close;
}

void IdleSystem(const LawBench& bench) {
  LawSky idle = bench.sky;
  RemoveSystem(idle, kQzss);
  LawSky disabled = idle;
  disabled.config.enable_system[4] = 0;
  const auto a = RunLawSky(idle, FeedWhole), b = RunLawSky(disabled, FeedWhole);
  if (!a || !b) return bench.proof->Check(false, "a run without QZSS");
  qc_core_summary& total = a->Whole->total;
  const qc_core_summary& expected = b->Whole->total;
  bool close = true;
  for (int i = 0; i < 6; ++i) {
    close = TakeIfClose(expected.mp[i], total.mp[i]) && close;
    close = TakeIfClose(expected.snr[i], total.snr[i]) && close;
    for (int k = 0; k < 2; ++k) close = TakeIfClose(expected.snr_30[i][k], total.snr_30[i][k]) && close;
  }
  bench.proof->Check(close, "combined means with a system without data");
  bench.proof->Check(a->SameBits(*b), "a system without data");
}

/// Without what the phase-minus-geometry test counts.
code_qc_entry WithoutSlips(code_qc_entry entry) {
  entry.iod_slip_count = 0;
  if (entry.mp_count == 0) entry.slip_count = 0;  // replaces the jumps
  if (entry.mp_count == 0) entry.obs_per_slip = 0;
  return entry;
}

void FurtherSystem(const LawBench& bench) {
  LawSky fewer = bench.sky;
  RemoveSystem(fewer, kQzss);
  const auto results = RunLawSky(fewer, FeedWhole);
  if (!results) return bench.proof->Check(false, "a run without QZSS");
  for (int s = 0; s < 4; ++s) {
    for (int prn = 1; prn <= 64; ++prn) {
      const code_qc_block& with = bench.whole->Codes->sat[s][prn - 1];
      const code_qc_block& without = results->Codes->sat[s][prn - 1];
      bench.proof->Check(with.count == without.count, "codes with an additional system");
      for (int k = 0; k < with.count; ++k) {
        const code_qc_entry a = WithoutSlips(with.entries[k]), b = WithoutSlips(without.entries[k]);
        bench.proof->Check(std::memcmp(&a, &b, sizeof a) == 0, "figures with an additional system");
      }
    }
  }
}

void EmptyBatches(const LawBench& bench) {
  const auto results = RunLawSky(bench.sky, [&bench](Process& process, const LawSky& sky) {
    return FeedSplit(process, sky, 50, 4, [&](Process& fed) {
      bench.proof->Check(fed.Feed(nullptr, 5) == GNSSQC_NO_DATA, "a batch without epochs");
      bench.proof->Check(fed.Feed(sky.epochs.data(), 0) == GNSSQC_NO_DATA, "a batch of no epochs");
      bench.proof->Check(fed.Feed(sky.epochs.data(), -1) == GNSSQC_NO_DATA, "a batch of a negative count");
    });
  });
  bench.Same(results.get(), "empty batches in between");
}

void ResultsAtAnyTime(const LawBench& bench) {
  const auto results = RunLawSky(bench.sky, [](Process& process, const LawSky& sky) {
    Results{process};
    return FeedSplit(process, sky, 30, 5, [](Process& fed) {
      Results{fed};
      Results{fed};
    });
  });
  bench.Same(results.get(), "results asked in between");
}

struct LawRow {
  const char* name;
  const char* must_hold;
  Law law;
};

const LawRow kLaws[] = {
    {"split into batches of 1, up to 2, 13 and 200 epochs", "the same bits in both records", AnySplit},
    {"satellites shuffled in every epoch but the first", "the same bits", OrderInLaterEpochs},
    {"satellites shuffled in every epoch", "the same bits in every row of a satellite and code",
     OrderInTheFirstEpoch},
    {"satellites shuffled, position computed", "the same bits", OrderWithComputedPosition},
    {"records and epochs 1, 26 and -3 weeks later", "the same bits except for the times", WholeWeeks},
    {"records and epochs a week later, position computed", "a position within 5 m of the other",
     WholeWeeksWithComputedPosition},
    {"eight threads, one handle each, position computed", "the same bits in each", EightThreads},
    {"a system enabled that has no data", "the same bits as disabled; the combined means within 1e-15",
     IdleSystem},
    {"an additional system with data", "the same bits in the rows of the others except for their slips",
     FurtherSystem},
    {"empty batches after each batch", "`no data` is returned; the same bits", EmptyBatches},
    {"both results requested twice after each batch, and before the first", "the same bits",
     ResultsAtAnyTime},
};

void Describe(Proof& proof) {
  proof.injected =
      "skies of five systems with faults: outages, missing and duplicate epochs, slips, code jumps, SNR "
      "drops";
  proof.must_say = "as in the table, compared with the run in one batch with the position given";
  proof.tolerance = "none: every bit of both result records; 5 m for a computed position a week later";
  proof.reason =
      "no law of the table reorders an arithmetic operation of the library; 5 m is the largest zenith delay "
      "that the ionospheric model of the positioning adds by day";
  proof.notes = {
      "What may depend on the order of satellites: the codes of a system are kept in the order of their "
      "first appearance, so the order within the first epochs determines the order of the rows in a code "
      "block, the order of the code combinations, which ten of more are formed, and which of equally "
      "complete ones is the best. When a satellite appears twice in an epoch its first signals are used for "
      "multipath and slips; of more than 80 satellites the first 80 are read. Nothing else does: satellites "
      "are processed by number.",
      "An additional system changes the common change of an epoch, which is the median over all satellites; "
      "the slips counted by the phase-minus-geometry test may therefore change for all systems, but nothing "
      "else does.",
      "The shift by weeks holds with the position given. A computed one changes by decimetres, because the "
      "ionospheric model of the positioning reduces the time with a period that does not divide a week.",
      "A system without data is still merged into the combined result: each mean is multiplied by its count "
      "and divided by it again, which may round its last bit.",
      "A split does not change the bits as long as the first batch contains every code of the run (here its "
      "first epoch does): codes that first appear after the first batch are not reported.",
      "The same laws hold on a simpler sky in `tests/property/split_test.cpp`, "
      "`tests/property/laws_test.cpp` and `tests/property/threads_test.cpp`, the last one also under the "
      "thread sanitizer."};
}

}  // namespace

void ProveLaws(bool long_form, Proof& proof) {
  Describe(proof);
  ProofTable table{"Laws.", {"change", "what must hold", "skies", "comparisons", "failed"}, {}, 2};
  for (const LawRow& row : kLaws) {
    const std::size_t checks = proof.Checks(), failed = proof.Failed();
    const int skies = long_form ? 8 : 2;
    for (int i = 0; i < skies; ++i) {
      LawBench bench = {
          MakeLawSky(i % 2 == 0 ? 30 : 1, long_form ? 600 : 260, 300U + static_cast<unsigned>(i)), nullptr,
          &proof};
      proof.Check(FirstEpochHasEveryCode(bench.sky), "a code comes late");
      bench.whole = RunLawSky(bench.sky, FeedWhole);
      proof.Check(bench.whole && bench.whole->Whole->total.jump_epochs > 5, "the sky shows too little");
      if (bench.whole) row.law(bench);
    }
    table.rows.push_back({row.name, row.must_hold, std::to_string(skies),
                          std::to_string(proof.Checks() - checks), std::to_string(proof.Failed() - failed)});
  }
  proof.tables.push_back(table);
}

}  // namespace orsolva_test
