#include "custody/drafts.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "crypto/conversion.h"
#include "custody/deflate.h"
#include "custody/systemrecord.h"
#include "store/record_put.h"

namespace bmr::custody {

using namespace store;
namespace {

constexpr std::uint8_t kDraftsField = 16;
constexpr unsigned kVersion = 1;
/// A bound for what a field of the file may grow to in memory, far above what anybody types.
constexpr std::size_t kMostPlain = std::size_t{1} << 20;
/// Selector and vector stand in front of a field cipher text and are drawn anew for every store.
constexpr std::size_t kStampSize = 10;
constexpr int kMinutesOfDay = 1440;
constexpr unsigned kPrivateFlag = 1;
constexpr unsigned kCutFlag = 2;

void PutByte(Secret& out, unsigned value) {
    out.Append(Bytes(1, ByteChar(value)));
}
void PutNumber(Secret& out, std::int64_t value) {
    out.Append(conversion::PackInteger(value, 4).value_or(Bytes(4, '\0')));
}
void PutText(Secret& out, std::string_view text) {
    PutNumber(out, static_cast<std::int64_t>(text.size()));
    out.Append(text);
}

void PutDraft(Secret& out, const Draft& draft) {
    PutNumber(out, draft.id);
    PutByte(out, draft.user);
    PutByte(out, draft.section);
    PutByte(out, (draft.isPrivate ? kPrivateFlag : 0) | (draft.cut ? kCutFlag : 0));
    PutNumber(out, draft.key);
    PutNumber(out, draft.category);
    PutNumber(out, std::llround(draft.when.serial * kMinutesOfDay));
    PutText(out, draft.stamp);
    PutText(out, draft.title.view());
    PutByte(out, static_cast<unsigned>(draft.texts.size()));
    for (const DraftText& text : draft.texts) {
        PutByte(out, text.number);
        PutText(out, text.text.view());
    }
}

/// Takes values off the front of a text; once one is missing, all that follow are.
class Reader {
  public:
    explicit Reader(std::string_view rest) : rest_(rest) {}
    bool More() const { return good_ && !rest_.empty(); }
    bool Good() const { return good_; }

    std::string_view Take(std::size_t size) {
        good_ = good_ && size <= rest_.size();
        if (!good_) return {};
        const std::string_view taken = rest_.substr(0, size);
        rest_.remove_prefix(size);
        return taken;
    }
    std::uint8_t Byte() {
        const std::string_view taken = Take(1);
        return static_cast<std::uint8_t>(taken.empty() ? 0 : ByteAt(taken, 0));
    }
    std::int32_t Number() {
        const std::string_view taken = Take(4);
        return taken.empty() ? 0 : conversion::UnpackInteger(taken);
    }
    std::string_view Text() {
        const std::int32_t size = Number();
        good_ = good_ && size >= 0;
        return Take(good_ ? static_cast<std::size_t>(size) : 0);
    }

  private:
    std::string_view rest_;
    bool good_ = true;
};

Draft TakeDraft(Reader& reader) {
    Draft draft;
    draft.id = reader.Number();
    draft.user = reader.Byte();
    draft.section = reader.Byte();
    const unsigned flags = reader.Byte();
    draft.isPrivate = (flags & kPrivateFlag) != 0;
    draft.cut = (flags & kCutFlag) != 0;
    draft.key = reader.Number();
    draft.category = reader.Number();
    draft.when.serial = static_cast<double>(reader.Number()) / kMinutesOfDay;
    draft.stamp = Bytes(reader.Text());
    draft.title = Secret(reader.Text());
    const int count = reader.Byte();
    for (int i = 0; i < count && reader.Good(); ++i) {
        const std::uint8_t number = reader.Byte();
        draft.texts.push_back({number, Secret(reader.Text())});
    }
    return draft;
}

/// Nothing for a field that another program, or a later version, has written.
std::optional<std::vector<Draft>> Unpack(std::string_view field) {
    std::vector<Draft> drafts;
    if (field.empty()) return drafts;
    if (ByteAt(field, 0) != kVersion) return std::nullopt;
    const auto plain = Inflate(field.substr(1), kMostPlain);
    if (!plain) return std::nullopt;
    Reader reader(plain->view());
    while (reader.More())
        drafts.push_back(TakeDraft(reader));
    if (!reader.Good()) return std::nullopt;
    return drafts;
}

/// Shortens a UTF-8 text to at most `size` bytes, between two characters.
void CutText(Secret& text, std::size_t size) {
    while (size > 0 && (ByteAt(text.view(), size) & 0xC0U) == 0x80U)
        --size;
    text = Secret(text.view().substr(0, size));
}

/// Cuts the text that weighs most to the part `share` of its length. False when there is nothing to cut.
bool CutLargest(std::vector<Draft>& drafts, double share, std::size_t (*weigh)(std::string_view text)) {
    DraftText* largest = nullptr;
    Draft* owner = nullptr;
    std::size_t most = 0;
    for (Draft& draft : drafts)
        for (DraftText& text : draft.texts) {
            const std::size_t weight = text.text.empty() ? 0 : weigh(text.text.view());
            if (weight <= most) continue;
            most = weight;
            largest = &text;
            owner = &draft;
        }
    if (largest == nullptr) return false;
    const auto wanted = static_cast<std::size_t>(static_cast<double>(largest->text.size()) * share);
    CutText(largest->text, std::min(wanted, largest->text.size() - 1));
    owner->cut = true;
    return true;
}

std::size_t PlainWeight(std::string_view text) {
    return text.size();
}
std::size_t PackedWeight(std::string_view text) {
    return Deflate(text).size();
}

/// The field's value; nothing when the drafts cannot be made to fit.
std::optional<Secret> Pack(std::vector<Draft>& drafts) {
    constexpr double kMargin = 15.0 / 16;
    const auto shareOf = [](std::size_t room, std::size_t size) {
        return static_cast<double>(room) / static_cast<double>(size);
    };
    if (drafts.empty()) return Secret();
    for (;;) {
        Secret plain;
        for (const Draft& draft : drafts)
            PutDraft(plain, draft);
        if (plain.size() > kMostPlain) {
            if (!CutLargest(drafts, shareOf(kMostPlain, plain.size()) * kMargin, PlainWeight))
                return std::nullopt;
            continue;
        }
        Secret field(Bytes(1, ByteChar(kVersion)));
        field.Append(Deflate(plain.view()).view());
        if (field.size() <= kLongestText) return field;
        if (!CutLargest(drafts, shareOf(kLongestText, field.size()) * kMargin, PackedWeight))
            return std::nullopt;
    }
}

/// The stored drafts of all users.
Result<std::vector<Draft>> LoadAll(Session& session) {
    const auto field = ReadSystemMemo(session, kDraftsField);
    if (!field) return field.error();
    auto drafts = Unpack(field->view());
    if (!drafts) return Error{engine::EngineNumber::Failed, "the drafts do not decode"};
    return std::move(*drafts);
}

/// Loads, lets `change` at them, stores.
int ChangeDrafts(Session& session, const std::function<void(std::vector<Draft>&)>& change) {
    engine::Transaction transaction(*session.ProgramDb);
    if (transaction.error() != 0) return transaction.error();
    auto drafts = LoadAll(session);
    if (!drafts) return drafts.error().number;
    change(*drafts);
    const auto field = Pack(*drafts);
    if (!field) return engine::EngineNumber::Failed;
    if (const int error = WriteSystemMemo(session, kDraftsField, field->view())) return error;
    return transaction.Commit();
}

auto Find(std::vector<Draft>& drafts, std::int32_t id) {
    return std::find_if(drafts.begin(), drafts.end(), [id](const Draft& draft) { return draft.id == id; });
}

Bytes StampOf(const engine::Recordset& row) {
    return TextOf(row.Field("fEtx")).substr(0, kStampSize);
}

}  // namespace

void Draft::Put(std::uint8_t number, std::string_view text) {
    texts.push_back({number, Secret(text)});
}

std::string_view Draft::Text(std::uint8_t number) const {
    for (const DraftText& text : texts)
        if (text.number == number) return text.text.view();
    return {};
}

int StoreDrafts(Session& session, std::vector<Draft> drafts) {
    if (drafts.empty()) return 0;
    return ChangeDrafts(session, [&](std::vector<Draft>& stored) {
        for (Draft& draft : drafts) {
            draft.user = session.user.UserNumber;
            draft.when = session.ports.clock.Now();
            const auto row = FetchRow(session, draft.section, draft.key);
            draft.stamp = row && *row ? StampOf(**row) : Bytes();
            const auto before = Find(stored, draft.id);
            if (draft.id != 0 && before != stored.end()) {
                *before = std::move(draft);
                continue;
            }
            while (draft.id == 0 || Find(stored, draft.id) != stored.end())
                draft.id = conversion::UnpackInteger(cry::RandomBytes(session.ports.random, 4));
            stored.push_back(std::move(draft));
        }
    });
}

std::vector<Draft> LoadDrafts(Session& session) {
    auto drafts = LoadAll(session);
    if (!drafts) return {};
    std::erase_if(*drafts, [&](const Draft& draft) { return draft.user != session.user.UserNumber; });
    return std::move(*drafts);
}

int DropDraft(Session& session, std::int32_t id) {
    return ChangeDrafts(session, [id](std::vector<Draft>& stored) {
        std::erase_if(stored, [id](const Draft& draft) { return draft.id == id; });
    });
}

DraftBase BaseOf(Session& session, const Draft& draft) {
    if (draft.key == kNewRecord) return DraftBase::New;
    const auto row = FetchRow(session, draft.section, draft.key);
    if (!row) return DraftBase::Changed;  // nobody knows, and a record that may stand is not made anew
    if (!*row) return DraftBase::Gone;
    return StampOf(**row) == draft.stamp ? DraftBase::Same : DraftBase::Changed;
}

}  // namespace bmr::custody
