#include "Range.h"

#include "Document.h"

namespace tresk::cli {

namespace {

Fault outside(const QString& text)
{
    return {ItemStatus::OutsideDocument, text};
}

} // namespace

int storedLength(const FileTag& file)
{
    return file.compression == QLatin1String("flate") ? file.cfilesize : file.filesize;
}

Fault faultOfRange(const Document& document, const SectionTag& step)
{
    if (step.left < 0 || step.size < 0)
        return outside(QStringLiteral("its marker does not say which bytes belong to it"));
    const qint64 start = qint64(step.pos) - step.left;
    if (start < 0)
        return outside(QStringLiteral("it reaches beyond the start of the document"));
    if (start + step.size > document.size())
        return outside(QStringLiteral("it reaches beyond the end of the document"));
    return {};
}

Fault faultOfRange(const Document& document, const FileTag& file)
{
    const int length = storedLength(file);
    if (length < 0 || file.offset < 0)
        return outside(QStringLiteral("its marker does not say where it is stored"));
    if (qint64(file.pos) + file.tagLength + file.offset + length > document.size())
        return outside(QStringLiteral("its stored bytes reach beyond the end of the document"));
    return {};
}

} // namespace tresk::cli
