#include <tresk/Validator.h>

namespace tresk {

Validator::Validator(const QString& md5, const QString& md5Compressed)
{
    reinit(md5, md5Compressed);
}

Validator::~Validator() = default;

void Validator::reinit(const QString& md5, const QString& md5Compressed)
{
    m_md5 = md5;
    m_md5Compressed = md5Compressed;
    m_compressed = !md5Compressed.isEmpty();
    m_contentDigest.reset();
    m_storedDigest.reset();
    m_inflater.reset();
}

void Validator::update(const QByteArray& data)
{
    if (m_compressed) {
        m_storedDigest.update(data);
        m_contentDigest.update(m_inflater.inflateData(data));
    } else {
        m_contentDigest.update(data);
    }
}

bool Validator::isValid()
{
    if (m_compressed && (!m_inflater.hasFinished() || !m_inflater.isValid()))
        return false;
    if (m_contentDigest.getHexDigest() != m_md5)
        return false;
    return !m_compressed || m_storedDigest.getHexDigest() == m_md5Compressed;
}

} // namespace tresk
