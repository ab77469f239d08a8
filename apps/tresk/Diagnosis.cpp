#include "Diagnosis.h"

#include "ContentReader.h"
#include "Document.h"
#include "Interruption.h"
#include "Range.h"

#include <algorithm>

namespace tresk::cli {

namespace {

Fault missingOrDifferent(bool missing)
{
    if (missing)
        return {ItemStatus::NoChecksum, QStringLiteral("its checksum is missing")};
    return {ItemStatus::Differs, QStringLiteral("its checksum differs")};
}

bool isReadable(Document& document, qint64 start, qint64 end)
{
    const qint64 piece = qint64(256) * 1024;
    for (qint64 pos = start; pos < end && interruptedBy() == 0; pos += piece) {
        const int size = static_cast<int>(std::min(piece, end - pos));
        if (document.bytes(pos, size).size() != size)
            return false;
    }
    return true;
}

} // namespace

Fault diagnose(Document& document, const SectionTag& step)
{
    Fault fault = faultOfRange(document, step);
    if (!fault.isNone())
        return fault;
    const qint64 start = qint64(step.pos) - step.left;
    if (!isReadable(document, start, start + step.size))
        return {ItemStatus::Unreadable, QStringLiteral("its bytes cannot be read")};
    return missingOrDifferent(step.md5section.isEmpty());
}

Fault diagnose(Document& document, const FileTag& file)
{
    ContentReader content(document, file);
    while (!content.next().isEmpty() && interruptedBy() == 0) { }
    if (!content.fault().isNone())
        return content.fault();
    const bool compressed = file.compression == QLatin1String("flate");
    return missingOrDifferent(file.md5file.isEmpty() || (compressed && file.md5cfile.isEmpty()));
}

} // namespace tresk::cli
