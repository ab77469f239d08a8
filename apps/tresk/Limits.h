#ifndef TRESK_APPS_LIMITS_H
#define TRESK_APPS_LIMITS_H

#include "CommandLine.h"

#include <tresk/SummaryCreator.h>
#include <tresk/WorkflowTree.h>

#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

/// How much commands unpack and follow by themselves, and the options that change it.
namespace tresk::cli {

/// The number of bytes that @p text, a SIZE, says; nothing if it is none.
std::optional<qint64> sizeFromText(const QString& text);

/// The option --max-unpacked of a command that unpacks nothing but summaries.
Option summaryLimitOption();
/// Applies it. Reports a wrong value and returns false.
bool applyLimits(const Invocation& invocation, const Command* command, SummaryBudget& budget);

/// @p options and those that set the limits of a tree.
std::vector<Option> withTreeLimits(std::vector<Option> options);
/// Applies them. Reports a wrong value and returns false.
bool applyLimits(const Invocation& invocation, const Command* command, WorkflowTreeLimits& limits);
/// The limits of a tree unless options change them.
WorkflowTreeLimits usualTreeLimits();

/// What commands that read summaries say of those that are left out, one text for each reason;
/// @p whole is the budget before they were read, @p option what is put behind the number of bytes.
QStringList shortfalls(const SummaryBudget& whole, const SummaryBudget& left,
                       const QString& option = QString());
/// What they say of what a tree within @p limits has left out.
QStringList shortfalls(const WorkflowTreeLimits& limits,
                       const QList<WorkflowTreeOmission>& omitted);

} // namespace tresk::cli

#endif
