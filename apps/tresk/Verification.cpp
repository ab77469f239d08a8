#include "Verification.h"

#include "Diagnosis.h"
#include "Document.h"
#include "Interruption.h"
#include "Messages.h"
#include "Progress.h"
#include "Range.h"
#include "Text.h"

#include <tresk/ValidationQueue.h>

#include <optional>

namespace tresk::cli {

namespace {

/// What can be told of an item from its marker.
template <typename Tag>
Fault faultOfMarker(Document& document, const Tag& tag)
{
    const Fault fault = faultOfRange(document, tag);
    return fault.isNone() ? fault : diagnose(document, tag); // which may know more, at once
}

/// The steps of a document, oldest first, and then its embedded files.
std::vector<Verification::Item> itemsOf(Document& document)
{
    std::vector<Verification::Item> items;
    const QList<SectionTag> steps = document.parser().getSections();
    for (auto step = steps.crbegin(); step != steps.crend(); ++step)
        items.push_back({true, step->id, faultOfMarker(document, *step)});
    const QList<FileTag> files = document.parser().getFiles();
    for (const FileTag& file : files)
        items.push_back({false, file.id, faultOfMarker(document, file)});
    return items;
}

} // namespace

Verification::Verification(Document& document, std::function<void(const Item&)> tell)
    : m_document(document)
    , m_tell(std::move(tell))
    , m_items(itemsOf(document))
{
}

bool Verification::run(Progress& progress)
{
    TreskParser& parser = m_document.parser();
    ValidationQueue queue(&parser, queueBlock);
    std::optional<bool> valid; // of the item that has just been checked
    const auto note = [&valid](int, bool isValid) { valid = isValid; };
    QString name;
    QObject::connect(&queue, &LogSource::log, &queue, relayLogLine);
    QObject::connect(&queue, &ValidationQueue::sectionProcessed, &queue, note);
    QObject::connect(&queue, &ValidationQueue::fileProcessed, &queue, note);
    QObject::connect(&queue, &ValidationQueue::percentFinishedChanged, &queue,
                     [&name](int, const QString& current) { name = current; });

    fill(queue);
    tellOfRanges();
    qint64 done = 0;
    qint64 doneOfItem = 0;
    for (bool more = true; more;) {
        more = queue.process();
        doneOfItem += queueBlock;
        if (valid) {
            Item& item = m_items[m_next];
            item.fault = faultOf(item, *valid);
            // A diagnosis that was interrupted says nothing.
            if (interruptedBy() != 0 && !item.fault.isNone())
                return false;
            m_tell(item);
            ++m_next;
            tellOfRanges();
            done += bytesOf(item);
            doneOfItem = 0;
            valid.reset();
        }
        if (more && interruptedBy() != 0) {
            queue.cancelValidation();
            return false;
        }
        if (more)
            progress.show(done + doneOfItem, unescaped(name));
    }
    return true;
}

/// Queues the items whose bytes are in the document. The others need no reading, of which their
/// markers might ask for any amount.
void Verification::fill(ValidationQueue& queue)
{
    QList<int> steps;
    QList<int> files;
    for (const Item& item : m_items) {
        if (item.fault.isNone())
            (item.isStep ? steps : files).append(item.id);
    }
    queue.reset(&m_document.parser());
    queue.addValidatees(files, steps);
}

/// Tells of the next items as far as they were not queued.
void Verification::tellOfRanges()
{
    for (; m_next < m_items.size() && !m_items[m_next].fault.isNone(); ++m_next)
        m_tell(m_items[m_next]);
}

qint64 Verification::bytesOf(const Item& item) const
{
    const TreskParser& parser = m_document.parser();
    return item.isStep ? parser.getSection(item.id)->size : storedLength(*parser.getFile(item.id));
}

qint64 Verification::bytesToCheck() const
{
    qint64 sum = 0;
    for (const Item& item : m_items)
        sum += item.fault.isNone() ? bytesOf(item) : 0;
    return sum;
}

Fault Verification::faultOf(const Item& item, bool valid) const
{
    if (valid)
        return {};
    const TreskParser& parser = m_document.parser();
    return item.isStep ? diagnose(m_document, *parser.getSection(item.id))
                       : diagnose(m_document, *parser.getFile(item.id));
}

} // namespace tresk::cli
