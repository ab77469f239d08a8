#include "QueryModel.h"

#include "ModelValues.h"

#include <algorithm>

namespace tresktest {

namespace {

bool isUnnamed(const QString& name)
{
    return name.startsWith(QLatin1Char('@'));
}

bool uses(const ModelLiteral& literal, const QString& name)
{
    const auto isOf = [&](const ModelOperand& operand) {
        return operand.kind == ModelOperand::Attribute && operand.name == name;
    };
    return isOf(literal.left) || isOf(literal.right);
}

bool usesNone(const ModelLiteral& literal)
{
    return literal.left.kind != ModelOperand::Attribute
        && literal.right.kind != ModelOperand::Attribute;
}

QString size(int bytes)
{
    return bytes == -1 ? QString() : QString::number(bytes);
}

QString flag(bool isSet)
{
    return isSet ? QStringLiteral("true") : QStringLiteral("false");
}

/// What a step has, by attribute.
QHash<QString, QString> fieldsOf(const tresk::Summary& step)
{
    return {{QStringLiteral("hash"), step.md5Signature},
            {QStringLiteral("tagid"), QString::number(step.tagId)},
            {QStringLiteral("treskrootfile"), step.treskRootFile},
            {QStringLiteral("timestamp"), step.timestamp},
            {QStringLiteral("title"), step.title},
            {QStringLiteral("description"), step.description},
            {QStringLiteral("comment"), step.comment},
            {QStringLiteral("command"), step.command},
            {QStringLiteral("tool"), step.tool},
            {QStringLiteral("toolpath"), step.toolPath},
            {QStringLiteral("host"), step.host},
            {QStringLiteral("user"), step.user},
            {QStringLiteral("creator"), step.creator}};
}

/// What a file of @p step has.
QHash<QString, QString> fieldsOf(const tresk::FileSummary& file, const tresk::Summary& step)
{
    return {{QStringLiteral("hash"), file.uncompressedMD5},
            {QStringLiteral("md5"), file.uncompressedMD5},
            {QStringLiteral("cmd5"), file.compressedMD5},
            {QStringLiteral("tagid"), QString::number(file.tagId)},
            {QStringLiteral("parentid"), QString::number(step.tagId)},
            {QStringLiteral("filename"), file.filename},
            {QStringLiteral("filepath"), file.filepath},
            {QStringLiteral("filetype"), file.filetype},
            {QStringLiteral("description"), file.description},
            {QStringLiteral("comment"), file.comment},
            {QStringLiteral("lastmodified"), file.lastModified},
            {QStringLiteral("filepurpose"), file.filePurpose},
            {QStringLiteral("filesize"), size(file.uncompressedSize)},
            {QStringLiteral("cfilesize"), size(file.compressedSize)}};
}

/// What a file or step has under names of its user's choice, a line for each.
template <typename Record>
QString userAttributesOf(const Record& record)
{
    QStringList lines;
    for (const QString& name : record.userAttributeNames) {
        const QString line = name + QLatin1Char('=') + record.userAttributes.value(name);
        if (!lines.contains(line))
            lines += line;
    }
    return lines.join(QLatin1Char('\n'));
}

/// The flags of a file; those of a step, where @p file is null, are all false but one.
QHash<QString, QString> flagsOf(const tresk::FileSummary* file)
{
    const QString purpose = file ? file->filePurpose : QString();
    const QString method = file ? file->compressedMethod : QString();
    return {
        {QStringLiteral("iswfs"), flag(!file)},
        {QStringLiteral("isfile"), flag(file)},
        {QStringLiteral("embedded"), flag(file && file->embedded)},
        {QStringLiteral("compressed"), flag(!method.isEmpty() && method != QLatin1String("none"))},
        {QStringLiteral("isinfile"), flag(purpose == QLatin1String("InFile"))},
        {QStringLiteral("isoutfile"), flag(purpose == QLatin1String("OutFile"))}};
}

} // namespace

QueryModel::QueryModel(const QList<tresk::Summary>& summaries)
{
    for (int i = 0; i < summaries.size(); ++i) {
        const tresk::Summary& step = summaries.at(i);
        m_records.push_back({&step, nullptr, QStringLiteral("wfs:%1").arg(i)});
        for (int j = 0; j < step.files.size(); ++j) {
            m_records.push_back(
                {&step, &step.files.at(j), QStringLiteral("file:%1:%2").arg(i).arg(j)});
        }
    }
}

QStringList QueryModel::valuesOf(const Record& record, const QString& attribute)
{
    const QHash<QString, QString> own = record.file ? record.file->userAttributes
                                                    : record.step->userAttributes;
    const auto fields = record.file ? fieldsOf(*record.file, *record.step) : fieldsOf(*record.step);
    if (attribute == QLatin1String("any")) {
        QStringList values = fields.values() + own.values();
        values.removeAll(QString());
        return values;
    }
    if (attribute.startsWith(QLatin1String("user:"))) {
        const QString key = attribute.mid(5);
        return {own.contains(key) ? own.value(key) : record.step->userAttributes.value(key)};
    }
    if (attribute == QLatin1String("userattrs"))
        return {record.file ? userAttributesOf(*record.file) : userAttributesOf(*record.step)};
    const auto flags = flagsOf(record.file);
    return {flags.value(attribute, fields.value(attribute))};
}

std::optional<QStringList> QueryModel::valuesOf(const ModelOperand& operand,
                                                const ModelPlaces& places) const
{
    if (operand.kind == ModelOperand::Text)
        return QStringList(operand.text);
    if (operand.kind == ModelOperand::Nothing || !places.contains(operand.name))
        return std::nullopt;
    return valuesOf(m_records[std::size_t(places.value(operand.name))], operand.text);
}

int QueryModel::code(const ModelLiteral& literal, const ModelPlaces& places) const
{
    const Place place(&literal, places.value(literal.left.name, -1),
                      places.value(literal.right.name, -1));
    const auto known = m_codes.find(place);
    if (known != m_codes.end())
        return known->second;
    return m_codes[place] = evaluate(literal, places);
}

int QueryModel::evaluate(const ModelLiteral& literal, const ModelPlaces& places) const
{
    const auto left = valuesOf(literal.left, places);
    const auto right = valuesOf(literal.right, places);
    if (!left || (!literal.op.isEmpty() && !right))
        return 0;
    bool holds = false;
    if (literal.op.isEmpty()) {
        holds = left->contains(QStringLiteral("true"));
    } else {
        const bool isUnequal = literal.op == QLatin1String("!=");
        const QString op = isUnequal ? QStringLiteral("==") : literal.op;
        for (const QString& a : *left) {
            for (const QString& b : *right)
                holds = holds || modelHolds(a, op, b);
        }
        holds = holds != isUnequal;
    }
    return holds != literal.negated ? 1 : 2;
}

std::optional<ModelBindings> QueryModel::search(const ModelForm& form) const
{
    ModelPlaces places;
    Codes codes;
    for (const QList<ModelLiteral>& disjunction : form) {
        codes.emplace_back();
        for (const ModelLiteral& literal : disjunction)
            codes.back().push_back(usesNone(literal) ? code(literal, places) : 0);
        if (std::count(codes.back().begin(), codes.back().end(), 2) == disjunction.size())
            return std::nullopt;
    }
    if (!searchFrom(form, namesOf(form), places, codes))
        return std::nullopt;
    return bindingsOf(places);
}

bool QueryModel::searchFrom(const ModelForm& form, const QStringList& names, ModelPlaces& places,
                            Codes& codes) const
{
    if (names.isEmpty())
        return true;
    const QString& name = names.first();
    const Codes before = codes;
    for (int record = 0; record < int(m_records.size()); ++record) {
        if (isTaken(name, record, places))
            continue;
        places.insert(name, record);
        bool isFalse = false;
        for (int i = 0; i < form.size(); ++i) {
            std::vector<int>& line = codes[std::size_t(i)];
            bool isConcerned = false;
            for (int j = 0; j < form.at(i).size(); ++j) {
                if (uses(form.at(i).at(j), name)) {
                    line[std::size_t(j)] = code(form.at(i).at(j), places);
                    isConcerned = true;
                }
            }
            isFalse = isFalse
                || (isConcerned && std::count(line.begin(), line.end(), 2) == int(line.size()));
        }
        if (!isFalse && searchFrom(form, names.mid(1), places, codes))
            return true;
        places.remove(name);
        codes = before;
    }
    return false;
}

std::optional<ModelBindings>
QueryModel::tryAll(const QStringList& names,
                   const std::function<bool(const ModelPlaces&)>& holds) const
{
    ModelPlaces places;
    const std::function<bool(int)> tryFrom = [&](int first) {
        if (first == names.size())
            return holds(places);
        for (int record = 0; record < int(m_records.size()); ++record) {
            if (isTaken(names.at(first), record, places))
                continue;
            places.insert(names.at(first), record);
            if (tryFrom(first + 1))
                return true;
            places.remove(names.at(first));
        }
        return false;
    };
    if (!tryFrom(0))
        return std::nullopt;
    return bindingsOf(places);
}

std::optional<ModelBindings> QueryModel::tryAll(const ModelForm& form) const
{
    return tryAll(namesOf(form), [&](const ModelPlaces& places) {
        return std::all_of(form.begin(), form.end(), [&](const QList<ModelLiteral>& disjunction) {
            return std::any_of(
                disjunction.begin(), disjunction.end(),
                [&](const ModelLiteral& literal) { return code(literal, places) != 2; });
        });
    });
}

bool QueryModel::isTaken(const QString& name, int record, const ModelPlaces& places) const
{
    if (isUnnamed(name))
        return false;
    for (auto place = places.cbegin(); place != places.cend(); ++place) {
        if (!isUnnamed(place.key()) && place.value() == record)
            return true;
    }
    return false;
}

ModelBindings QueryModel::bindingsOf(const ModelPlaces& places) const
{
    ModelBindings bindings;
    for (auto place = places.cbegin(); place != places.cend(); ++place) {
        if (!isUnnamed(place.key()))
            bindings.insert(place.key(), m_records[std::size_t(place.value())].key);
    }
    return bindings;
}

} // namespace tresktest
