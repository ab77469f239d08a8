#include "RecordText.h"

namespace tresktest {

namespace {

class FieldList {
public:
    FieldList& add(const char* name, int value) { return add(name, QString::number(value)); }
    FieldList& add(const char* name, const QString& value)
    {
        m_text += QLatin1String(name) + QLatin1Char('=') + value + QLatin1Char('|');
        return *this;
    }
    QString text() const { return m_text; }

private:
    QString m_text;
};

} // namespace

QString textOf(const tresk::SectionTag& section)
{
    return FieldList()
        .add("id", section.id)
        .add("pos", section.pos)
        .add("tagLength", section.tagLength)
        .add("version", section.version)
        .add("creator", section.creator)
        .add("title", section.title)
        .add("left", section.left)
        .add("size", section.size)
        .add("index", section.index)
        .add("md5section", section.md5section)
        .add("previousmd5", section.previousmd5)
        .add("previousmarker", section.previousmarker)
        .add("validationTag", textOf(section.validationTag))
        .text();
}

QString textOf(const tresk::FileTag& file)
{
    return FieldList()
        .add("id", file.id)
        .add("pos", file.pos)
        .add("tagLength", file.tagLength)
        .add("filetype", file.filetype)
        .add("filename", file.filename)
        .add("desc", file.desc)
        .add("comment", file.comment)
        .add("compression", file.compression)
        .add("filesize", file.filesize)
        .add("cfilesize", file.cfilesize)
        .add("blocksize", file.blocksize)
        .add("offset", file.offset)
        .add("md5file", file.md5file)
        .add("md5cfile", file.md5cfile)
        .text();
}

QString textOf(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toPercentEncoding());
}

} // namespace tresktest
