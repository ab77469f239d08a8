#include <tresk/Inflater.h>

#include "container/ByteSearch.h"
#include "container/ZlibStream.h"

namespace tresk {

Inflater::Inflater()
    : m_stream(std::make_unique<ZlibStream>())
{
}

Inflater::~Inflater() = default;

void Inflater::reset()
{
    m_stream->reset();
}

QByteArray Inflater::inflateData(const QByteArray& input)
{
    QByteArray output;
    const auto append = [&output](const char* data, int size) {
        if (size > longestArray - output.size())
            return false;
        output.append(data, size);
        return true;
    };
    return m_stream->inflate(input.constData(), input.size(), append) ? output : QByteArray();
}

bool Inflater::hasFinished() const
{
    return m_stream->hasFinished();
}

bool Inflater::isValid() const
{
    return m_stream->isValid();
}

} // namespace tresk
