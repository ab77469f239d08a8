#ifndef TRESK_TRESK_H
#define TRESK_TRESK_H

/// The whole public interface of the library.
#include <tresk/BinaryDir.h>
#include <tresk/ConjunctiveNormalForm.h>
#include <tresk/Export.h>
#include <tresk/ExtractionQueue.h>
#include <tresk/FileHash.h>
#include <tresk/FileIterator.h>
#include <tresk/Inflater.h>
#include <tresk/LogSource.h>
#include <tresk/MD5Generator.h>
#include <tresk/QueryError.h>
#include <tresk/StopWatch.h>
#include <tresk/Summary.h>
#include <tresk/SummaryCreator.h>
#include <tresk/SummaryReader.h>
#include <tresk/TreskFindQuery.h>
#include <tresk/TreskParser.h>
#include <tresk/Tripple.h>
#include <tresk/ValidationQueue.h>
#include <tresk/Validator.h>

#endif
