// Collecting the facts of a run from its process object.
#ifndef ORSOLVA_QC_RUN_FACTS_H
#define ORSOLVA_QC_RUN_FACTS_H

#include "orsolva/run_facts.h"
#include "qc/process.h"

namespace orsolva {

RunFacts CollectRunFacts(const PostProcessGnssQc& process);

}  // namespace orsolva

#endif  // ORSOLVA_QC_RUN_FACTS_H
