#ifndef TRESK_FILEITERATOR_H
#define TRESK_FILEITERATOR_H

#include <tresk/Export.h>

#include <QByteArray>
#include <QSharedPointer>
#include <QString>

#include <memory>

class QFile;

namespace tresk {

/// Walks a possibly large file line by line, forwards and backwards, and reads byte
/// ranges of it.
///
/// A line is a run of bytes up to and including a line feed, or the rest of the file
/// behind the last one. Between lines stands a cursor: reading forwards takes the line
/// that begins at the cursor and leaves the cursor behind its line feed; reading
/// backwards takes the line that ends at the cursor and leaves the cursor at its first
/// byte. A backward read right after a forward read therefore returns the same line
/// again, and the other way round.
///
/// Only a slice of the file is held in memory, of 10240 bytes after a jump and of up to
/// 256 KiB while a scan goes on, besides the current line. Time is linear in the
/// bytes passed, however long the lines are.
///
/// Positions are byte offsets in signed 32-bit integers, and sizes are truncated to them:
/// files of 2 GiB or more are not supported. No operation reports an error otherwise than
/// by a false, empty or null result, which a file that has ended gives as well; readFailed()
/// tells them apart.
class TRESK_EXPORT FileIterator {
public:
    /// Creates a closed iterator: no file, position -1.
    FileIterator();
    ~FileIterator();

    /// Closes what is open, opens the file at @p path for reading and reads its first
    /// line. Returns true also for an empty file, which has no current line; false if the
    /// file cannot be opened or is not a regular file (a pipe or a directory). After a
    /// failure the iterator counts as empty and every read returns false. The current
    /// line's bytes of a file that was open before are kept until a line is read.
    bool open(const QString& path);

    /// Goes to the start and reads the first line. False for an empty file.
    bool firstLine();
    /// Goes to the end and reads the last line backwards. False for an empty file.
    bool lastLine();
    /// Reads the line behind the cursor. False at the end of the file: the current line
    /// keeps its bytes, while curPos() becomes the position of the cursor.
    bool nextLine();
    /// Reads the line before the cursor. False at the start of the file: the current line
    /// keeps its bytes, and curPos() becomes 0.
    bool prevLine();

    /// Reads forwards until a line begins with @p bytes, and makes it the current one.
    /// Does what calling nextLine() until curLineStartsWithBytes() does, without copying
    /// the lines in between. False where there is no such line: the cursor is at the end, as
    /// is curPos(), and the current line keeps its bytes.
    bool nextLineStartingWith(const char* bytes);
    /// Reads backwards until a line contains @p bytes (which hold no line feed). Does what
    /// calling prevLine() until then does, without copying the lines in between. False where
    /// there is no such line: the cursor is at the start, as is curPos(), and the current
    /// line keeps its bytes.
    bool prevLineContaining(const char* bytes);

    /// Reads from offset @p pos through the next line feed, whether or not a line of the
    /// file begins there. False, and nothing changes, if @p pos is negative or not below
    /// the size of the file.
    bool gotoPos(int pos);

    /// Offset of the current line's first byte; -1 when closed.
    int curPos() const;
    /// The current line's bytes, line feed included where it has one; null without a file.
    QSharedPointer<QByteArray> curLine() const;
    /// The current line decoded as UTF-8; null without a file and for a line that holds a
    /// NUL byte.
    QSharedPointer<QString> curLineAsString() const;
    /// Whether the current line's bytes begin with @p bytes (no decoding).
    bool curLineStartsWithBytes(const char* bytes) const;

    /// Reads @p len bytes from offset @p pos. Empty if the range is not wholly inside the
    /// file; shorter if the file has become shorter. Moves neither line nor cursor.
    QByteArray getBytes(int pos, int len);

    /// Whether the cursor is at the start of the file; false without a file.
    bool reachedStart() const;
    /// Whether the cursor is at the end of the file; false without a file.
    bool reachedEnd() const;
    /// Whether there is no file, or nothing in it.
    bool empty() const;
    /// Always false.
    bool onLine() const;
    /// Size of the open file in bytes, not truncated; 0 without a file.
    qint64 getFileSize() const;
    /// Whether the file at the path of the last open(), or a part of it that was wanted since,
    /// could not be read, for another reason than that the file ends there. What was read may
    /// lack something then.
    bool readFailed() const;

    /// Gives the file's descriptor back. The next read opens the file at its path again.
    void releaseFile();

private:
    Q_DISABLE_COPY(FileIterator)

    bool openFile();
    void closeFile();
    bool isOpen() const;
    bool reopen();
    int size() const;
    qint64 cursorPos() const;
    bool moveCursor(qint64 pos);
    bool readInto(QByteArray& bytes, qint64 pos, int len);
    bool getBuffer(qint64 pos, int len);
    bool getFirstBuffer();
    bool getNextBuffer(int overlap = 0);
    bool getPrevBuffer(int overlap = 0);
    bool getLastBuffer();
    bool searchForwards();
    bool searchBackwards();

    std::unique_ptr<QFile> m_file;
    bool m_released = false;
    bool m_readFailed = false;
    qint64 m_fileSize = 0;
    QByteArray m_buffer; // the slice
    QByteArray m_line;
    int m_lineStart = -1;
    qint64 m_bufferStart = -1; // offset of the slice in the file
    int m_cursor = 0; // within the slice
    int m_sliceSize;
};

} // namespace tresk

#endif
