#include "Mutation.h"

namespace tresktest {

namespace {

// 9 keeps numbers numbers and makes them large.
const QByteArray bytesSet("\0\n\r-9\xff", 6);
constexpr int firstByteSet = 9;
constexpr int kinds = firstByteSet + 6;

const QLatin1String repairSuffix("+repair");

QString kindName(int kind)
{
    if (kind == 0)
        return QStringLiteral("cut");
    if (kind < firstByteSet)
        return QStringLiteral("bit%1").arg(kind - 1);
    return QStringLiteral("byte")
        + QString::fromLatin1(bytesSet.mid(kind - firstByteSet, 1).toHex());
}

} // namespace

Mutation::Mutation(int place, int kind, bool repairs)
    : m_place(place)
    , m_kind(kind)
    , m_repairs(repairs)
{
}

int Mutation::count(int size)
{
    return size * kinds * 2;
}

Mutation Mutation::numbered(int index)
{
    return {index / 2 / kinds, index / 2 % kinds, index % 2 == 1};
}

std::optional<Mutation> Mutation::named(const QString& name)
{
    const bool repairs = name.endsWith(repairSuffix);
    const QString plain = repairs ? name.chopped(repairSuffix.size()) : name;
    const auto at = plain.indexOf(QLatin1Char('@'));
    bool isNumber = false;
    const int place = plain.mid(at + 1).toInt(&isNumber);
    if (!isNumber || place < 0)
        return std::nullopt;
    for (int kind = 0; kind < kinds; ++kind) {
        if (kindName(kind) == plain.left(at))
            return Mutation(place, kind, repairs);
    }
    return std::nullopt;
}

QString Mutation::name() const
{
    return kindName(m_kind) + QLatin1Char('@') + QString::number(m_place)
        + (m_repairs ? QString(repairSuffix) : QString());
}

QByteArray Mutation::applied(const QByteArray& document) const
{
    if (m_place >= document.size())
        return document;
    if (m_kind == 0)
        return document.left(m_place);
    QByteArray damaged = document;
    damaged[m_place] = m_kind < firstByteSet
        ? static_cast<char>(document.at(m_place) ^ (1 << (m_kind - 1)))
        : bytesSet.at(m_kind - firstByteSet);
    return damaged;
}

} // namespace tresktest
