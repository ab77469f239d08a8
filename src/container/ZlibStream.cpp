#include "container/ZlibStream.h"

#include <algorithm>
#include <new>

namespace tresk {

namespace {

constexpr int outputSize = 1024 * 1024;
constexpr qint64 largestInput = 1 << 30; // zlib counts its input in 32 bits

/// Returns @p result, what zlib says of a call. Where memory is short it throws, as everything
/// else does then: nothing is wrong with the data.
int checked(int result)
{
    if (result == Z_MEM_ERROR)
        throw std::bad_alloc();
    return result;
}

} // namespace

ZlibStream::ZlibStream()
    : m_output(new char[outputSize])
{
    init();
}

ZlibStream::~ZlibStream()
{
    inflateEnd(&m_zlib);
}

void ZlibStream::init()
{
    m_zlib = z_stream();
    m_finished = false;
    m_valid = checked(inflateInit(&m_zlib)) == Z_OK;
}

void ZlibStream::reset()
{
    inflateEnd(&m_zlib);
    init();
}

bool ZlibStream::inflate(const char* data, qint64 size, const Sink& sink)
{
    if (size <= 0)
        return m_valid;
    m_zlib.avail_in = 0; // what is left behind the end of the stream
    bool bufferWasFull = false;
    do {
        provideInput(data, size);
        m_zlib.next_out = reinterpret_cast<Bytef*>(m_output.get());
        m_zlib.avail_out = outputSize;
        const int result = checked(::inflate(&m_zlib, Z_NO_FLUSH));
        // Input that ends just where the buffer was full is no fault.
        if (result == Z_BUF_ERROR && bufferWasFull && m_zlib.avail_in == 0)
            return true;
        if (result != Z_OK && result != Z_STREAM_END)
            return fail();
        m_finished = result == Z_STREAM_END;
        const int count = outputSize - int(m_zlib.avail_out);
        if (count > 0 && !sink(m_output.get(), count))
            return fail();
        bufferWasFull = m_zlib.avail_out == 0;
    } while (!m_finished && (bufferWasFull || size > 0));
    return true;
}

/// Hands zlib the next part of the input once it has used up the last.
void ZlibStream::provideInput(const char*& data, qint64& size)
{
    if (m_zlib.avail_in > 0 || size == 0)
        return;
    const qint64 count = std::min(size, largestInput);
    m_zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data));
    m_zlib.avail_in = uInt(count);
    data += count;
    size -= count;
}

bool ZlibStream::fail()
{
    inflateEnd(&m_zlib);
    m_valid = false;
    return false;
}

} // namespace tresk
