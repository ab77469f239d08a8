#include "TargetNames.h"

#include "Characters.h"
#include "Text.h"

#include <QHash>
#include <QVector>

#include <algorithm>
#include <iterator>
#include <utility>
#include <vector>

namespace tresk::cli {

namespace {

constexpr int mostBytes = 255;
constexpr int longestExtension = 15;

bool isBlankOrDot(QChar c)
{
    return c == QLatin1Char('.') || c.isSpace();
}

QString withoutTrailing(QString name)
{
    while (!name.isEmpty() && isBlankOrDot(name.back()))
        name.chop(1);
    return name;
}

/// Length of the extension of @p name, dot included: letters and digits only, not too many,
/// and behind something.
int extensionLength(const QString& name)
{
    const auto dot = name.lastIndexOf(QLatin1Char('.'));
    const auto length = name.size() - dot - 1;
    if (dot <= 0 || length == 0 || length > longestExtension)
        return 0;
    const bool plain = std::all_of(name.begin() + dot + 1, name.end(),
                                   [](QChar c) { return c.isLetterOrNumber(); });
    return plain ? static_cast<int>(length) + 1 : 0;
}

/// The longest beginning of @p text that takes at most @p bytes as UTF-8.
QString cutToBytes(const QString& text, qint64 bytes)
{
    if (text.toUtf8().size() <= bytes)
        return text;
    Characters it(text);
    while (it.hasNext()) {
        const char32_t c = it.next();
        bytes -= c < 0x80 ? 1 : c < 0x800 ? 2 : c < 0x10000 ? 3 : 4;
        if (bytes < 0)
            break;
    }
    return text.left(it.start());
}

/// @p name with @p insertion in front of its extension, shortened where it would be too long.
QString inserted(const QString& name, const QString& insertion)
{
    const int length = extensionLength(name);
    const QString tail = insertion + name.right(length);
    const QString stem = cutToBytes(name.chopped(length), mostBytes - tail.toUtf8().size());
    return tail.isEmpty() ? withoutTrailing(stem) : stem + tail;
}

bool isReserved(const QString& name)
{
    static const char* const devices[] = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    static const char* const ports[] = {"COM", "LPT"};
    // Windows takes these for devices with any extension, and blanks in front of it.
    const QString stem = withoutTrailing(name.section(QLatin1Char('.'), 0, 0)).toUpper();
    const auto is = [&stem](const char* device) { return stem == QLatin1String(device); };
    if (std::any_of(std::begin(devices), std::end(devices), is))
        return true;
    const bool port = std::any_of(std::begin(ports), std::end(ports), [&stem](const char* device) {
        return stem.startsWith(QLatin1String(device));
    });
    return port && stem.size() == 4 && stem.back().digitValue() >= 0;
}

/// The name of @p file as far as it follows from the file alone.
QString safeName(const FileTag& file)
{
    QString name = unescaped(file.filename);
    name = name.mid(
        std::max(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char('\\'))) + 1);
    name = replaceCharacters(name, isUnprintable, [](char32_t) { return QLatin1Char('_'); });
    name = inserted(withoutTrailing(name), QString());
    if (name.isEmpty() || isReserved(name))
        return QStringLiteral("file-%1").arg(file.id);
    return name;
}

/// What is equal for names that a file system may take for the same.
QString comparable(const QString& name)
{
    const auto form = QString::NormalizationForm_D;
    // Upper case first: case folding in Qt leaves a sharp s alone, which equals "ss" elsewhere.
    return name.normalized(form).toUpper().toCaseFolded().normalized(form);
}

} // namespace

TargetNames::TargetNames(const QList<FileTag>& files)
{
    QStringList keys;
    QHash<QString, int> uses;
    for (const FileTag& file : files) {
        m_names += safeName(file);
        keys += comparable(m_names.last());
        ++uses[keys.last()];
    }

    // A name that got its id may meet another one that happens to end like this, which then
    // needs its id too. Names that all have their ids differ, so this comes to an end.
    std::vector<bool> hasId(static_cast<size_t>(files.size()), false);
    for (;;) {
        QVector<int> ambiguous;
        for (const FileTag& file : files) {
            if (uses[keys[file.id]] > 1 && !hasId[static_cast<size_t>(file.id)])
                ambiguous += file.id;
        }
        if (ambiguous.isEmpty())
            break;
        for (const int id : std::as_const(ambiguous)) {
            --uses[keys[id]];
            m_names[id] = inserted(m_names[id], QStringLiteral("-%1").arg(id));
            keys[id] = comparable(m_names[id]);
            ++uses[keys[id]];
            hasId[static_cast<size_t>(id)] = true;
        }
    }
}

} // namespace tresk::cli
