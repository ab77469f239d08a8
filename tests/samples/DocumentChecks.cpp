#include "DocumentChecks.h"

#include <tresk/MD5Generator.h>
#include <tresk/Validator.h>

#include <QProcess>
#include <QProcessEnvironment>

namespace tresktest {

ProgramResult run(const QString& program, const QStringList& arguments)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);

    ProgramResult result;
    result.started = process.waitForStarted(-1);
    if (result.started && process.waitForFinished(-1)
        && process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    result.output = QString::fromLocal8Bit(process.readAllStandardOutput());
    result.errors = QString::fromLocal8Bit(process.readAllStandardError());
    return result;
}

QByteArray summaryOf(tresk::TreskParser& parser, int section)
{
    const QList<tresk::FileTag> files = parser.getFilesInSection(section);
    if (files.isEmpty() || files.constLast().filename != QLatin1String("ws_summary.xml"))
        return {};
    const auto content = parser.getFileContent(files.constLast().id);
    return content ? *content : QByteArray();
}

bool isFileSound(tresk::TreskParser& parser, const tresk::FileTag& file)
{
    const auto content = parser.getFileContent(file.id);
    if (!content || content->size() != file.filesize
        || tresk::MD5Generator(*content).getHexDigest() != file.md5file)
        return false;
    const bool compressed = file.compression == QLatin1String("flate");
    const QPair<QString, QString> expected = compressed ? qMakePair(file.md5cfile, file.md5file)
                                                        : qMakePair(file.md5file, QString());
    const bool plainSizesAgree = compressed || file.cfilesize == file.filesize;
    return plainSizesAgree && parser.calcChecksumsForFile(file.id) == expected;
}

bool isSectionSound(tresk::TreskParser& parser, const tresk::SectionTag& section)
{
    const int start = section.pos - section.left;
    const int behindTag = section.pos + static_cast<int>(section.validationTag.size());
    tresk::Validator validator(section.md5section, QString());
    validator.update(parser.getBytes(start, section.left));
    validator.update(section.validationTag);
    validator.update(parser.getBytes(behindTag, start + section.size - behindTag));
    return validator.isValid();
}

QStringList unsoundFiles(tresk::TreskParser& parser)
{
    QStringList names;
    const QList<tresk::FileTag> files = parser.getFiles();
    for (const tresk::FileTag& file : files) {
        if (!isFileSound(parser, file))
            names.append(file.filename);
    }
    return names;
}

QStringList unsoundSections(tresk::TreskParser& parser)
{
    QStringList titles;
    const QList<tresk::SectionTag> sections = parser.getSections();
    for (const tresk::SectionTag& section : sections) {
        if (!isSectionSound(parser, section))
            titles.append(section.title);
    }
    return titles;
}

} // namespace tresktest
