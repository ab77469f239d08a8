#include "QueueComparison.h"

#include "DocumentScript.h"

#include "DocumentWriter.h"

#include <limits>

using tresktest::QueueEvents;

namespace tresk_fuzz {

namespace {

constexpr int mostSteps = 1500; // of one operation
constexpr int largestBlock = 1 << 30;

template <typename Queue>
void requireEnd(Queue& queue)
{
    int steps = 0;
    while (queue.process())
        TRESK_REQUIRE(++steps < 10 * 1000);
}

/// Fills both queues alike and requires them to do the same.
template <typename Queue, typename Fill>
void requireSameRun(Queue& used, Queue& fresh, const Fill& fill)
{
    QueueEvents usedEvents(used);
    QueueEvents freshEvents(fresh);
    fill(used);
    fill(fresh);
    TRESK_REQUIRE(tresktest::finish(used, usedEvents) == tresktest::finish(fresh, freshEvents));
}

} // namespace

void QueueComparison::begin(int blockSize)
{
    requireWritten();
    m_validation = std::make_unique<tresk::ValidationQueue>(parser(), blockSize);
    m_extraction = std::make_unique<tresk::ExtractionQueue>(parser());
    m_validationEvents = std::make_unique<QueueEvents>(*m_validation);
    m_extractionEvents = std::make_unique<QueueEvents>(*m_extraction);
    m_validationModel = std::make_unique<tresktest::ValidationModel>(view(), blockSize);
    m_extractionModel = std::make_unique<tresktest::ExtractionModel>(view());
}

void QueueComparison::perform(const QByteArray& line)
{
    const QList<QByteArray> words = tresk_fuzz::words(line);
    if (words.isEmpty())
        return;
    QList<int> numbers;
    for (const QByteArray& word : words.mid(1))
        numbers.append(numberIn(word, std::numeric_limits<int>::max() / 16));
    const int first = numbers.value(0);
    switch (words.at(0).at(0)) {
    case 'b':
        begin(first);
        break;
    case 'p':
        for (int i = qMin(first, mostSteps); i > 0; --i)
            process();
        break;
    case 'z':
        for (int i = 0; i < mostSteps && process(); ++i) { }
        break;
    case 'c':
        m_validation->cancelValidation();
        m_validationModel->cancelValidation();
        m_extraction->cancelExtraction();
        m_extractionModel->cancelExtraction();
        break;
    case 'r':
        takeDocument(first);
        m_validation->reset(parser());
        m_validationModel->reset(view());
        break;
    case 'R':
        takeDocument(first);
        repopulate();
        break;
    case 'a':
        addIds(numbers, numbers);
        break;
    case 'v':
        addIds(numbers, {});
        break;
    case 'd':
        addSavedFile(first, numbers.value(1));
        break;
    case 'x':
        addTargets(numbers);
        break;
    case 'i':
        interfere(first);
        break;
    default:
        break;
    }
    requireSameEvents();
}

void QueueComparison::takeDocument(int number)
{
    m_current = number < 2 ? &m_surroundings.documents[number] : nullptr;
    m_extraction->reset(parser());
    m_extractionModel->reset(view());
}

void QueueComparison::repopulate()
{
    m_validation->repopulate(parser());
    m_validationModel->repopulate(view());
    QList<int> targets;
    for (int id = 0; view() && id < view()->files.size(); ++id)
        targets << id << id;
    addTargets(targets);
}

void QueueComparison::addIds(const QList<int>& files, const QList<int>& sections)
{
    m_validation->addValidatees(files, sections);
    m_validationModel->addValidatees(files, sections);
}

void QueueComparison::addSavedFile(int size, int number)
{
    const QStringList& paths = m_surroundings.savedPaths;
    const QByteArray digest = tresktest::md5Hex(QByteArray(qMin(size, 100), 's'));
    const QList<tresk::SavedFile> files = {
        {paths.at(number % paths.size()), QString::fromLatin1(digest), size}};
    m_validation->addValidatees(files);
    m_validationModel->addValidatees(files);
}

void QueueComparison::addTargets(const QList<int>& numbers)
{
    m_extraction->addExtractees(targetsOf(numbers));
    m_extractionModel->addExtractees(targetsOf(numbers));
}

/// Pairs of a file's id and the number of a target.
QHash<int, QString> QueueComparison::targetsOf(const QList<int>& numbers) const
{
    const QStringList& targets = m_surroundings.targets;
    QHash<int, QString> chosen;
    for (int i = 0; i < numbers.size(); i += 2)
        chosen.insert(numbers.at(i), targets.at(numbers.value(i + 1) % targets.size()));
    return chosen;
}

void QueueComparison::interfere(int kind)
{
    if (!m_current)
        return;
    interfereWithValidation(kind);
    interfereWithExtraction(kind);
}

void QueueComparison::interfereWithValidation(int kind)
{
    tresk::ValidationQueue queue(parser(), largestBlock);
    int left = 5;
    const auto change = [&] {
        if (left-- <= 0)
            return;
        if (kind % 4 == 0)
            queue.cancelValidation();
        else if (kind % 4 == 1)
            queue.repopulate(parser());
        else if (kind % 4 == 2)
            queue.reset(parser());
        else
            queue.addValidatees({0, 1, 2}, {0, 1});
    };
    QObject::connect(&queue, &tresk::ValidationQueue::fileProcessed, change);
    QObject::connect(&queue, &tresk::ValidationQueue::sectionProcessed, change);
    if (kind >= 4)
        QObject::connect(&queue, &tresk::ValidationQueue::percentFinishedChanged, change);
    queue.repopulate(parser());
    requireEnd(queue);
    queue.cancelValidation();
    left = 0;
    tresk::ValidationQueue fresh(parser(), largestBlock);
    requireSameRun(queue, fresh, [this](auto& one) { one.repopulate(parser()); });
}

void QueueComparison::interfereWithExtraction(int kind)
{
    // None of those that the queues beside models write to.
    const tresktest::TestDir& folder = m_surroundings.folder;
    const QHash<int, QString> targets = {{0, folder.path(QStringLiteral("other 0"))},
                                         {1, folder.path(QStringLiteral("other 1"))},
                                         {2, folder.path(QStringLiteral("missing/other"))}};
    tresk::ExtractionQueue queue(parser());
    int left = 5;
    const auto change = [&] {
        if (left-- <= 0)
            return;
        if (kind % 3 == 0)
            queue.cancelExtraction();
        else if (kind % 3 == 1)
            queue.reset(parser());
        else
            queue.addExtractees(targets);
    };
    QObject::connect(&queue, &tresk::ExtractionQueue::fileProcessed, change);
    if (kind >= 4)
        QObject::connect(&queue, &tresk::ExtractionQueue::percentFinishedChanged, change);
    queue.addExtractees(targets);
    requireEnd(queue);
    queue.cancelExtraction();
    left = 0;
    tresk::ExtractionQueue fresh(parser());
    requireSameRun(queue, fresh, [&targets](auto& one) { one.addExtractees(targets); });
}

/// One step of both queues; whether one of them has more to do.
bool QueueComparison::process()
{
    const bool validates = m_validation->process();
    const bool extracts = m_extraction->process();
    TRESK_REQUIRE(validates == m_validationModel->process());
    TRESK_REQUIRE(extracts == m_extractionModel->process());
    return validates || extracts;
}

void QueueComparison::requireSameEvents()
{
    TRESK_REQUIRE(m_validationEvents->take() == m_validationModel->take());
    TRESK_REQUIRE(m_extractionEvents->take() == m_extractionModel->take());
}

void QueueComparison::requireWritten() const
{
    if (!m_extractionModel)
        return;
    const QMap<QString, QByteArray>& written = m_extractionModel->written();
    for (auto file = written.cbegin(); file != written.cend(); ++file)
        TRESK_REQUIRE(tresktest::readFile(file.key()) == file.value());
}

} // namespace tresk_fuzz
