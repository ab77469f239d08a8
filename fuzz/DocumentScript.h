#ifndef TRESK_FUZZ_DOCUMENTSCRIPT_H
#define TRESK_FUZZ_DOCUMENTSCRIPT_H

#include <QByteArray>
#include <QList>

namespace tresk_fuzz {

/// The document that a script describes, at most some 100 KB of it. Scripts keep inputs short and
/// readable, and a small change of one makes another document of the same kind. Behind the header,
/// which is always there, each line of the script adds something:
///
///     s LEFT SIZE PREVIOUS DIGEST     a section with what came since the last one
///     f METHOD LENGTH FILESIZE CFILESIZE BLOCKSIZE OFFSET DIGEST      an embedded file
///     w LENGTH                        a line of so many characters
///     j TEXT                          text that does not end its line
///     0                               a NUL byte, which does not end its line either
///     c                               lines end with CR LF from now on
///     x PLACE VALUE                   sets a byte behind the header of the finished document
///     TEXT                            a line like that
///
/// A field of a marker is a number as it is to be written, "-" for none, or "r", "r+N", "r-N" for
/// the right one and others near it; "r" is also what is left out. PREVIOUS may be "kN" too, with
/// or without a sum, for the section that was written N before this one. LEFT and SIZE by "r" give
/// a region whose checksum is right. METHOD is one of n (stored plain), z (as a zlib stream),
/// t (a stream that breaks off), d (a damaged one) and g (a word unknown to the reader). DIGEST is
/// r, - for none or w for a wrong one; of a file, s and c make wrong that of its stored bytes or of
/// its content alone.
QByteArray scriptedDocument(const QByteArray& script);

/// Words of a line, which blanks divide.
QList<QByteArray> words(const QByteArray& line);

/// The number in @p word from 0 to @p most; 0 where there is none, @p most for a larger one.
int numberIn(const QByteArray& word, int most);

} // namespace tresk_fuzz

#endif
