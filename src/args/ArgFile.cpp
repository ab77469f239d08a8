#include <tresk/ArgFile.h>

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace tresk {

void UserAttributes::addUserAttribute(const QString& key, const QString& value)
{
    m_keys.append(key);
    m_values.insert(key, value);
}

void UserAttributes::clearUserAttributes()
{
    m_keys.clear();
    m_values.clear();
}

bool UserAttributes::hasSameAttributes(const UserAttributes& other) const
{
    return m_values == other.m_values && m_keys == other.m_keys;
}

void UserAttributes::appendAttributesToList(const QString& option, QStringList& list) const
{
    for (const QString& key : m_keys)
        appendAttributeToList(m_values.value(key), option, key, list);
}

bool WSFile::operator==(const WSFile& other) const
{
    return m_filetype == other.m_filetype && m_filename == other.m_filename
        && m_filepath == other.m_filepath && m_md5File == other.m_md5File
        && m_autoMD5 == other.m_autoMD5 && m_embed == other.m_embed
        && m_optional == other.m_optional && m_compress == other.m_compress
        && m_preview == other.m_preview && m_previewWS == other.m_previewWS
        && m_thumbnail == other.m_thumbnail && m_thumbnailOnly == other.m_thumbnailOnly
        && m_filePurpose == other.m_filePurpose && m_comment == other.m_comment
        && m_description == other.m_description && hasSameAttributes(other);
}

void WSFile::setFilepath(const QString& path)
{
    m_filepath = path;
    if (!m_filepath.endsWith(QLatin1Char('/')))
        m_filepath += QLatin1Char('/');
}

void WSFile::setFilenameAndPath(const QString& path)
{
    const QFileInfo info(path);
    setFilepath(info.dir().path());
    setFilename(info.fileName());
}

QString WSFile::toCommandline(bool expandVariables) const
{
    QStringList words;
    words += inputFile() ? QStringLiteral("-i") : QStringLiteral("-o");
    words += QFileInfo(QDir(m_filepath), m_filename).filePath();

    const QString attribute = QStringLiteral("-a");
    appendAttributeToList(m_filetype, attribute, QStringLiteral("filetype"), words);
    appendAttributeToList(m_description, attribute, QStringLiteral("description"), words);
    appendAttributeToList(m_comment, attribute, QStringLiteral("comment"), words);
    appendAttributeToList(m_md5File, attribute, QStringLiteral("md5file"), words);

    const QString flag = QStringLiteral("-f");
    appendFlagToList(m_optional, flag, QStringLiteral("optional"), words);
    appendFlagToList(m_compress, flag, QStringLiteral("compress"), words);
    appendFlagToList(m_embed, flag, QStringLiteral("embed"), words);
    appendFlagToList(m_autoMD5, flag, QStringLiteral("automd5"), words);
    appendFlagToList(m_previewWS, flag, QStringLiteral("previewws"), words);
    appendFlagToList(m_preview, flag, QStringLiteral("preview"), words);
    appendFlagToList(m_thumbnail, flag, QStringLiteral("thumbnail"), words);
    appendFlagToList(m_thumbnailOnly, flag, QStringLiteral("thumbnailonly"), words);

    appendAttributesToList(QStringLiteral("-u"), words);
    return quoteStringList(words, expandVariables).join(QLatin1Char(' '));
}

ArgFile::ArgFile(const QString& outputTreskfile, const QString& rootfile)
    : m_outputTreskfiles(outputTreskfile)
    , m_rootfile(rootfile)
{
}

void ArgFile::clearVariables()
{
    // All that is neither a list nor the root file, which callers rely on being kept.
    ArgFile cleared;
    cleared.UserAttributes::operator=(*this);
    cleared.m_files = std::move(m_files); // pointers into it stay valid
    cleared.m_outputTreskfiles = m_outputTreskfiles;
    cleared.m_rootfile = m_rootfile;
    *this = std::move(cleared);
}

WSFile* ArgFile::addFile(const WSFile& file)
{
    m_files.push_back(file);
    return &m_files.back();
}

WSFile* ArgFile::getFile(int i)
{
    return hasFile(i) ? &m_files[std::size_t(i)] : nullptr;
}

WSFile* ArgFile::lastFile()
{
    return m_files.empty() ? nullptr : &m_files.back();
}

WSFile ArgFile::getConstFile(int i) const
{
    return hasFile(i) ? m_files[std::size_t(i)] : WSFile();
}

void ArgFile::removeFile(int i)
{
    if (hasFile(i))
        m_files.erase(m_files.begin() + i);
}

QStringList ArgFile::words() const
{
    QStringList words;
    if (m_verbosity == Quiet)
        words += QStringLiteral("--quiet");
    else if (m_verbosity == Verbose)
        words += QStringLiteral("--verbose");
    if (m_pretend)
        words += QStringLiteral("--pretend");
    if (m_debugMode)
        words += QStringLiteral("--debug");
    if (m_showHelp)
        words += QStringLiteral("--help");
    if (m_showVersion)
        words += QStringLiteral("--version");

    if (!m_firstpage.isEmpty())
        words << QStringLiteral("--firstpage") << m_firstpage;
    if (!m_readme.isEmpty())
        words << QStringLiteral("--readme") << m_readme;
    for (const QString& path : m_outputTreskfiles)
        words << QStringLiteral("-O") << path;
    if (!m_rootfile.isEmpty())
        words << (m_rootIsOptional ? QStringLiteral("-J") : QStringLiteral("-I")) << m_rootfile;

    const QString step = QStringLiteral("-s");
    appendAttributeToList(m_title, step, QStringLiteral("title"), words);
    appendAttributeToList(m_description, step, QStringLiteral("description"), words);
    appendAttributeToList(m_comment, step, QStringLiteral("comment"), words);
    appendAttributeToList(m_tool, step, QStringLiteral("tool"), words);
    appendAttributeToList(m_toolpath, step, QStringLiteral("toolpath"), words);
    appendAttributeToList(m_host, step, QStringLiteral("host"), words);
    appendAttributeToList(m_user, step, QStringLiteral("user"), words);
    appendAttributeToList(m_command, step, QStringLiteral("command"), words);

    const QString document = QStringLiteral("-d");
    appendAttributeToList(m_pdfTitle, document, QStringLiteral("title"), words);
    appendAttributeToList(m_pdfProducer, document, QStringLiteral("producer"), words);
    appendAttributeToList(m_pdfCreator, document, QStringLiteral("creator"), words);
    appendAttributeToList(m_pdfAuthor, document, QStringLiteral("author"), words);
    appendAttributeToList(m_pdfKeywords, document, QStringLiteral("keywords"), words);
    appendAttributeToList(m_pdfSubject, document, QStringLiteral("subject"), words);

    appendAttributesToList(QStringLiteral("-U"), words);
    return words;
}

QString ArgFile::toCommandline(bool expandVariables) const
{
    QString line = quoteStringList(words(), expandVariables).join(QLatin1Char(' '));
    for (const WSFile& file : m_files)
        line += QLatin1Char(' ') + file.toCommandline(expandVariables);
    return line;
}

QString ArgFile::getUndoWorkflowStep() const
{
    QString request;
    for (const QString& path : m_outputTreskfiles)
        request += QStringLiteral("<DelWorkflowStep>%1</DelWorkflowStep>").arg(path);
    return request;
}

void appendAttributeToList(const QString& value, const QString& option, const QString& key,
                           QStringList& list)
{
    if (!value.isEmpty())
        list << option << key << value;
}

void appendFlagToList(bool on, const QString& option, const QString& flag, QStringList& list)
{
    list << option << (on ? flag : QStringLiteral("no-") + flag);
}

QString quoteString(const QString& s, bool expandVariables)
{
    QString quoted;
    quoted.reserve(s.size() + 2);
    bool hasSpace = false;
    for (int i = 0; i < s.size(); ++i) {
        const QChar c = s[i];
        switch (c.unicode()) {
        case '$':
            if (expandVariables && (i + 1 == s.size() || s[i + 1] != c))
                break;
            if (expandVariables)
                ++i; // "$$" is one dollar sign that stands for itself
            quoted += QLatin1Char('\\');
            break;
        case '\\':
        case '"':
        case '`':
            quoted += QLatin1Char('\\');
            break;
        case ' ':
        case '\t':
        case '\r':
        case '\n':
            hasSpace = true;
            break;
        default:
            break;
        }
        quoted += c;
    }
    return hasSpace ? QLatin1Char('"') + quoted + QLatin1Char('"') : quoted;
}

QStringList quoteStringList(const QStringList& list, bool expandVariables)
{
    QStringList quoted;
    quoted.reserve(list.size());
    for (const QString& word : list)
        quoted += quoteString(word, expandVariables);
    return quoted;
}

} // namespace tresk
