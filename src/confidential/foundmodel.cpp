#include "confidential/foundmodel.h"

#include <QFont>
#include <limits>

#include "confidential/confidential.h"
#include "confidential/kinds.h"
#include "crypto/cry.h"
#include "kit/words.h"

namespace bmr::confidential {

namespace {

/// A row of a heading stands among the keys too, at numbers of which the engine, which draws keys from all of
/// 32 bits, gives one in four thousand millions.
std::int32_t HeadingKey(std::int32_t kind) {
    return std::numeric_limits<std::int32_t>::min() + kind;
}

}  // namespace

FoundModel::FoundModel(store::Session& session, QObject* parent)
    : RecordListModel(parent), session_(session) {}

int FoundModel::Rebuild(const QString& search) {
    const auto found = FindRecords(session_, kit::TakeWords(search));
    std::vector<std::int32_t> keys;
    beginResetModel();
    headings_.clear();
    for (const KindRecords& group : found ? *found : std::vector<KindRecords>()) {
        const std::string_view caption = ConfidentialKindFields(group.kind)->caption;
        keys.push_back(HeadingKey(group.kind));
        headings_[keys.back()] = QString::fromUtf8(caption.data(), static_cast<qsizetype>(caption.size()));
        keys.insert(keys.end(), group.keys.begin(), group.keys.end());
    }
    SetKeys(std::move(keys));
    endResetModel();
    return found ? 0 : found.error().number;
}

void FoundModel::Clear() {
    beginResetModel();
    headings_.clear();
    SetKeys({});
    endResetModel();
}

kit::CellTexts FoundModel::ReadTexts(int row) const {
    std::string name = RecordName(session_, KeyAt(row));
    kit::CellTexts texts({kit::ShowWords(name)});
    cry::WipeString(name);
    return texts;
}

QVariant FoundModel::data(const QModelIndex& index, int role) const {
    const auto heading = headings_.find(KeyAt(index.row()));
    if (heading != headings_.end()) {
        if (role == Qt::DisplayRole) return heading->second;
        if (role == kit::RecordRole::Marks) return kit::RowMark::Quiet;
        if (role == Qt::FontRole) {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    }
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole) return TextsOf(index.row()).texts.front();
    if (role == kit::RecordRole::Key) return KeyAt(index.row());
    return {};
}

QVariant FoundModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section != 0 || role != Qt::DisplayRole) return {};
    return tr("Record");
}

}  // namespace bmr::confidential
