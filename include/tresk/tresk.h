#ifndef TRESK_TRESK_H
#define TRESK_TRESK_H

/// @namespace tresk
/// The whole public interface of the library, which reads documents that carry a history of
/// workflow steps. `tresk/tresk.h` includes all of it, `tresk/NAME.h` a class and what belongs to
/// it.

#include <tresk/ArgFile.h>
#include <tresk/ArgfileParser.h>
#include <tresk/ArgfileReader.h>
#include <tresk/BinaryDir.h>
#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/CostMatrix.h>
#include <tresk/Dijkstra.h>
#include <tresk/Export.h>
#include <tresk/ExtractionQueue.h>
#include <tresk/FileHash.h>
#include <tresk/FileIterator.h>
#include <tresk/Inflater.h>
#include <tresk/LogSource.h>
#include <tresk/MD5Generator.h>
#include <tresk/Path.h>
#include <tresk/PriorityQueue.h>
#include <tresk/QueryError.h>
#include <tresk/StopWatch.h>
#include <tresk/Summary.h>
#include <tresk/SummaryCreator.h>
#include <tresk/SummaryReader.h>
#include <tresk/TreeId.h>
#include <tresk/TreskDiff.h>
#include <tresk/TreskFileManager.h>
#include <tresk/TreskFindQuery.h>
#include <tresk/TreskParser.h>
#include <tresk/TreskRunner.h>
#include <tresk/TreskaddRunner.h>
#include <tresk/TreskdelRunner.h>
#include <tresk/Tripple.h>
#include <tresk/ValidationQueue.h>
#include <tresk/Validator.h>
#include <tresk/Version.h>
#include <tresk/WorkflowTree.h>
#include <tresk/WorkflowstepCosts.h>

#endif
