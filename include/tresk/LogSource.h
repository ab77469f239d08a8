#ifndef TRESK_LOGSOURCE_H
#define TRESK_LOGSOURCE_H

#include <tresk/Export.h>

#include <QObject>
#include <QString>

namespace tresk {

/// Base class of all objects that report what they do.
///
/// Every long-lived object of the library is a log source. An owner relays the
/// messages of what it owns into its own signal (publishToLogSignal()), so that
/// one listener at the top receives them all.
///
/// Failures are reported by results and messages, with one exception: where memory runs out,
/// std::bad_alloc is thrown, by Qt or by the library itself. Files that were being written may be
/// left unfinished then, and objects that took part can only be destroyed. Not all of Qt survives
/// that; a program that must not crash then should end without unwinding, from a new-handler and
/// a terminate handler.
class TRESK_EXPORT LogSource : public QObject {
    Q_OBJECT

public:
    /// Creates a source without a Qt parent: nobody but the creator owns it. A
    /// @p listener that is not null is connected at once, as publishToLogSlot() does.
    explicit LogSource(QObject* listener = nullptr);
    ~LogSource() override;

    /// Connects log() to the slot `log(QString)` of @p target; null does nothing.
    ///
    /// Listeners receive the text of a message alone, without its type, also where
    /// they have a slot of two arguments. A target without the slot is reported by
    /// Qt's own connection warning.
    void publishToLogSlot(QObject* target);

    /// The same, but relays into the signal `log(QString)` of @p target.
    void publishToLogSignal(QObject* target);

Q_SIGNALS:
    /// A message @p msg of the kind @p type: 0 information, 1 warning, 2 error.
    /// Also to be had as `log(QString)`, without the type.
    void log(QString msg, int type = 0);
};

} // namespace tresk

#endif
