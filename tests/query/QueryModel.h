#ifndef TRESK_TESTS_QUERYMODEL_H
#define TRESK_TESTS_QUERYMODEL_H

#include "ModelForm.h"

#include <tresk/Summary.h>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <map>
#include <optional>
#include <tuple>
#include <vector>

/// Evaluates queries in the plainest way, without any of the library's stages.
namespace tresktest {

/// The record of each name, by its place in the list of records.
using ModelPlaces = QHash<QString, int>;
using ModelBindings = QHash<QString, QString>;

class QueryModel {
public:
    explicit QueryModel(const QList<tresk::Summary>& summaries);

    /// The codes of the search: 1 where the literal holds, 2 where it does not, 0 where that
    /// cannot be said. What is found out is remembered by the literal's address.
    int code(const ModelLiteral& literal, const ModelPlaces& places) const;

    /// Searches name by name, going back where a disjunction has become false.
    std::optional<ModelBindings> search(const ModelForm& form) const;

    /// Tries all bindings of @p names, the last name changing fastest, until @p holds.
    std::optional<ModelBindings> tryAll(const QStringList& names,
                                        const std::function<bool(const ModelPlaces&)>& holds) const;
    /// The same until no disjunction of @p form is false.
    std::optional<ModelBindings> tryAll(const ModelForm& form) const;

private:
    struct Record {
        const tresk::Summary* step;
        const tresk::FileSummary* file; ///< null for a step
        QString key;
    };
    using Codes = std::vector<std::vector<int>>;
    /// A literal and the records of its sides.
    using Place = std::tuple<const ModelLiteral*, int, int>;

    static QStringList valuesOf(const Record& record, const QString& attribute);
    std::optional<QStringList> valuesOf(const ModelOperand& operand,
                                        const ModelPlaces& places) const;
    int evaluate(const ModelLiteral& literal, const ModelPlaces& places) const;
    bool searchFrom(const ModelForm& form, const QStringList& names, ModelPlaces& places,
                    Codes& codes) const;
    bool isTaken(const QString& name, int record, const ModelPlaces& places) const;
    ModelBindings bindingsOf(const ModelPlaces& places) const;

    std::vector<Record> m_records;
    mutable std::map<Place, int> m_codes; ///< found out so far
};

} // namespace tresktest

#endif
