#include "backup/compressfile.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <sstream>

#include "backup/backupname.h"
#include "backup/makebackup.h"
#include "base/errors.h"
#include "support/data.h"
#include "support/failing_disk.h"
#include "support/full_disk.h"
#include "support/store_file.h"
#include "support/zlib.h"

namespace bmr::backup {
namespace {

namespace fs = std::filesystem;
using test::LoadVectors;
using test::ReadFile;
using test::TempFolder;
using test::WriteFile;

constexpr DateValue kNow{46347.5};

Bytes FromBase64(const std::string& text) {
    Bytes bytes;
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        static const std::string kLetters =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        const auto value = kLetters.find(c);
        if (value == std::string::npos) break;
        bits = bits << 6 | static_cast<unsigned>(value);
        if ((count += 6) >= 8) bytes += ByteChar(bits >> (count -= 8));
    }
    return bytes;
}

/// What a program wrote that compresses with the library alone.
Bytes PlainBackup(std::string_view data, const Bytes& name) {
    return test::PlainCompress(data) + WriteTrailer({name, static_cast<std::int32_t>(data.size())});
}

/// Bytes like those of a database: some that shrink, most that do not.
std::string Mixture(std::size_t size, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = i / 3000 % 3 == 0 ? "tasks "[i % 6] : ByteChar(static_cast<unsigned>(random()));
    if (size > 0) bytes.back() = 0;
    return bytes;
}

TEST(CompressFile, MeetsTheKnownAnswersBothWays) {
    const TempFolder folder;
    const auto vectors = LoadVectors("logic.json")["groups"];
    for (const auto& vector : vectors["Compress"]) {
        const std::string id = vector["id"];
        const Bytes data = FromBase64(vector["data"]);
        const Bytes blob = FromBase64(vector["blob"]);
        const Bytes name = *ToBytes(vector["path"].get<std::string>());
        const Bytes trailer = test::Hex(vector["out"]["trailer"]);
        EXPECT_EQ(WriteTrailer({name, static_cast<std::int32_t>(data.size())}), trailer) << id;
        WriteFile(folder / "known.bmz", blob);
        const auto read = ReadTrailer(folder / "known.bmz");
        ASSERT_TRUE(read) << id;
        EXPECT_EQ(read->name, name) << id;
        EXPECT_EQ(read->body + trailer.size(), blob.size()) << id;
        const auto& told = vector["restore"];
        EXPECT_EQ(PathText(RestoredName(PathOf(told["name"].get<std::string>()))), told["bmq"]) << id;
        EXPECT_EQ(PathText(DatabaseOfRestored(PathOf(told["bmq"].get<std::string>()))), told["bmr"]) << id;
        // Its folder is another system's, so that it is asked for.
        fs::path target;
        const auto size = CompressFile(false, folder / "known.bmz", target,
                                       {.chooseFolder = [&](const fs::path&) { return folder.Path(); }});
        ASSERT_TRUE(size) << id << ErrorText(size.error());
        EXPECT_EQ(*size, told["size"].get<std::uint64_t>()) << id;
        EXPECT_EQ(BareName(PathText(target)), BareName(told["bmqInNewFolder"].get<std::string>())) << id;
        EXPECT_EQ(ReadFile(target), data) << id;
    }
    for (const auto& vector : vectors["CompressRefused"]) {
        WriteFile(folder / "a.bmr", test::Hex(vector["data"]));
        fs::path target = folder / "refused.bmz";
        const auto size = CompressFile(true, folder / "a.bmr", target);
        ASSERT_FALSE(size);
        EXPECT_EQ(-size.error().number, vector["out"].get<int>()) << vector["id"];
        EXPECT_FALSE(fs::exists(target));
    }
    for (const auto& vector : vectors["RestoreRefused"]) {
        WriteFile(folder / "a.bmz", test::Hex(vector["blob"]));
        fs::path target;
        const auto size = CompressFile(false, folder / "a.bmz", target);
        ASSERT_FALSE(size);
        EXPECT_EQ(-size.error().number, vector["out"].get<int>()) << vector["id"];
    }
}

TEST(CompressFile, GivesTheSameBytesBackAndAnyZlibReadsThem) {
    const TempFolder folder;
    const fs::path source = folder / "data.bmr";
    fs::path backup = folder / "b.bmz";
    // Around the blocks that are worked on at once, in pages of a database, and some that shrink much.
    constexpr std::size_t kBlock = 1 << 20;
    for (const std::size_t size :
         {std::size_t{1}, std::size_t{2}, std::size_t{4096}, std::size_t{8192}, std::size_t{12288},
          kBlock - 1, kBlock, kBlock + 1, 3 * kBlock, 7 * kBlock + 12345})
        for (const bool shrinks : {false, true}) {
            const std::string data = shrinks ? std::string(size, 'x') : Mixture(size);
            WriteFile(source, data);
            const auto written = CompressFile(true, source, backup);
            ASSERT_TRUE(written) << ErrorText(written.error());
            const std::string bytes = ReadFile(backup);
            EXPECT_EQ(*written, bytes.size());
            const auto trailer = ReadTrailer(backup);
            ASSERT_TRUE(trailer);
            EXPECT_EQ(trailer->name, StoredName(source));
            EXPECT_EQ(test::PlainUncompress(std::string_view(bytes).substr(0, trailer->body), size), data)
                << size;
            EXPECT_LE(trailer->body, test::PlainCompress(data).size() * 102 / 100 + 16 * (size / kBlock + 1))
                << size;

            fs::remove(source);
            fs::path target;
            const auto restored = CompressFile(false, backup, target);
            ASSERT_TRUE(restored) << ErrorText(restored.error());
            EXPECT_EQ(target, folder / "data.bmq");
            EXPECT_EQ(ReadFile(target), data) << size;
            EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
        }
}

TEST(Packer, TheStreamIsTheSameOnEveryNumberOfCores) {
    const std::string data = Mixture(5 << 20);
    std::string first;
    for (const unsigned cores : {1U, 2U, 9U}) {
        std::istringstream source(data);
        std::string seen;
        Packer packer(
            source, [&seen](std::string_view part) { seen += part; }, cores);
        std::string packed;
        for (auto part = packer.Next(); !part.empty(); part = packer.Next())
            packed += part;
        EXPECT_TRUE(packer.Whole());
        EXPECT_EQ(packer.Done(), data.size());
        EXPECT_TRUE(seen == data);
        if (first.empty()) first = packed;
        EXPECT_TRUE(packed == first) << cores;
    }
    EXPECT_EQ(test::PlainUncompress(first, data.size()), data);
}

TEST(Restore, TakesWhatThePlainLibraryWroteAndNothingDamaged) {
    const TempFolder folder;
    const fs::path backup = folder / "b.bmz";
    const fs::path target = folder / "a.bmq";
    const std::string data = Mixture(9000).substr(2900, 400);
    const Bytes name = StoredName(folder / "a.bmr");
    const Bytes good = PlainBackup(data, name);
    WriteFile(backup, good);
    ASSERT_TRUE(Unpack(backup, target));
    EXPECT_EQ(ReadFile(target), data);
    fs::remove(target);

    const auto refuses = [&](const Bytes& bytes, const std::string& what) {
        WriteFile(backup, bytes);
        const auto size = Unpack(backup, target);
        const auto tested = TestBackup(backup);
        EXPECT_EQ(static_cast<bool>(size), static_cast<bool>(tested)) << what;
        if (!size) {
            EXPECT_FALSE(fs::exists(target)) << what;
            EXPECT_FALSE(fs::exists(PartName(target))) << what;
        }
        return size ? 0 : size.error().number;
    };
    // A flipped bit is found, or the bytes are the right ones: it lies in the name, which nothing protects,
    // or in the few that fill the last byte before the check sum.
    const std::size_t filling = good.size() - 6 - name.size() - 5;
    std::size_t unseen = 0;
    for (std::size_t bit = 0; bit < good.size() * 8; ++bit) {
        Bytes flipped = good;
        flipped[bit / 8] = ByteChar(ByteAt(flipped, bit / 8) ^ 1U << bit % 8);
        if (refuses(flipped, "bit " + std::to_string(bit)) != 0) continue;
        EXPECT_EQ(ReadFile(target), data) << bit;
        EXPECT_TRUE(bit / 8 == filling || (bit / 8 > filling + 4 && bit / 8 < good.size() - 6)) << bit;
        ++unseen;
        fs::remove(target);
    }
    EXPECT_GE(unseen, name.size() * 8);
    EXPECT_LT(unseen, name.size() * 8 + 8);
    for (std::size_t cut = 0; cut < good.size(); ++cut)
        EXPECT_NE(refuses(good.substr(0, cut), "cut"), 0) << cut;

    const Bytes packed = test::PlainCompress(data);
    const auto told = [&](const Bytes& body, std::int64_t size) {
        return refuses(body + WriteTrailer({name, static_cast<std::int32_t>(size)}), "told");
    };
    EXPECT_EQ(told(packed + "rubbish", 400), BackupNumber::Failed);
    EXPECT_EQ(told(packed.substr(0, packed.size() - 1), 400), BackupNumber::Failed);
    EXPECT_EQ(told(packed, 399), BackupNumber::Failed);
    EXPECT_EQ(told(packed, 401), BackupNumber::Failed);
    EXPECT_EQ(told(packed, -400), BackupNumber::Failed);
    EXPECT_EQ(told("ten bytes!", 0xFFFFFFFF), BackupNumber::Failed);
    EXPECT_EQ(told("ten bytes!", 0x7FFFFFFF), BackupNumber::Failed);
    EXPECT_EQ(told("", 1), BackupNumber::Failed);
    EXPECT_EQ(refuses("", "empty"), BackupNumber::ZeroLength);
    EXPECT_EQ(refuses(Bytes("\x00\x03\0\0\0\0", 6), "no name"), BackupNumber::NotCompressed);
    EXPECT_EQ(refuses("12345", "short"), BackupNumber::NotCompressed);
}

TEST(Restore, ABombIsStoppedAtTheSizeThatTheBackupTells) {
    const TempFolder folder;
    const Bytes packed = test::PlainCompress(std::string(64 << 20, '\0'));
    WriteFile(folder / "b.bmz", packed + WriteTrailer({"a.bmr", 100}));
    std::uint64_t most = 0;
    const auto size =
        Unpack(folder / "b.bmz", folder / "a.bmq", {.progress = [&most](std::uint64_t done, std::uint64_t) {
                   most = done;
                   return true;
               }});
    EXPECT_FALSE(size);
    EXPECT_LT(most, packed.size()) << "it was read to its end";
    EXPECT_FALSE(fs::exists(folder / "a.bmq"));
}

TEST(RestorePlace, UsesOnlyTheBareNameOfWhatIsNoFolderHere) {
    const TempFolder folder;
    const auto place = [](const std::string& path) { return PlaceOf({*ToBytes(path), 1, 1}); };
    for (const auto& [path, bare] :
         std::vector<std::pair<std::string, std::string>>{{"C:\\Docs\\My Data ä.bmr", "My Data ä.bmr"},
                                                          {"C:plain.bmr", "plain.bmr"},
                                                          {"..\\..\\up.bmr", "up.bmr"},
                                                          {"../../etc/up.bmr", "up.bmr"},
                                                          {"\\\\server\\share\\x/y\\z.bmr", "z.bmr"},
                                                          {"/no such folder/a.bmr", "a.bmr"},
                                                          {"a.bmr", "a.bmr"}}) {
        const auto found = place(path);
        ASSERT_TRUE(found) << path;
        EXPECT_EQ(found->bare, bare) << path;
        EXPECT_TRUE(found->ask) << path;
        EXPECT_FALSE(found->folderExists) << path;
    }
    for (const char* path : {"..", "/a/..", "/", "C:\\", "a\nb.bmr", "x:stream:y.bmr"})
        EXPECT_FALSE(place(path)) << path;

    const std::string stored = (folder / "own.bmr").string();
    EXPECT_FALSE(place(stored)->ask);
    EXPECT_EQ(place(stored)->In(place(stored)->folder), fs::path(stored));
    WriteFile(stored, "a database");
    EXPECT_TRUE(place(stored)->ask) << "a database stands there";

    // Nobody who could be asked, or who chooses none: no folder is guessed.
    WriteFile(folder / "b.bmz", PlainBackup("data", "C:\\Docs\\a.bmr"));
    fs::path target;
    const auto size = CompressFile(false, folder / "b.bmz", target,
                                   {.chooseFolder = [](const fs::path&) { return std::nullopt; }});
    ASSERT_FALSE(size);
    EXPECT_EQ(size.error().number, BackupNumber::Failed);
}

TEST(StoredName, IsAbsoluteAndFallsBackToTheBareName) {
    EXPECT_EQ(StoredName("a.bmr"), *ToBytes(PathText(fs::current_path() / "a.bmr")));
    EXPECT_EQ(StoredName("/x/../y/ü €.bmr"), "/y/\xfc \x80.bmr");
    EXPECT_EQ(StoredName("/y/Łódź.bmr"),
              "_\xf3"
              "d_.bmr");
    EXPECT_EQ(StoredName("/Łódź/plain.bmr"), "plain.bmr");
    EXPECT_EQ(StoredName("/" + std::string(250, 'n') + ".bmr"), "/" + std::string(250, 'n') + ".bmr");
    EXPECT_EQ(StoredName("/d/" + std::string(249, 'n') + ".bmr"), std::string(249, 'n') + ".bmr");
    EXPECT_EQ(StoredName("/d/" + std::string(300, 'n') + ".bmr").size(), kLongestName);
}

TEST(MakeBackup, RefusesInWordsWhatWouldNotComeBack) {
    const TempFolder folder;
    const fs::path database = folder / "a.bmr";
    const auto number = [&](const fs::path& file) {
        const auto made = MakeBackup(file, folder.Path(), kNow);
        EXPECT_FALSE(made) << file;
        EXPECT_FALSE(ErrorText(made.error()).empty());
        return made.error().number;
    };
    EXPECT_EQ(number(database), BackupNumber::NotFound);
    WriteFile(folder / "a.bma", "an archive");
    EXPECT_EQ(number(folder / "a.bma"), BackupNumber::Failed);
    WriteFile(database, "");
    EXPECT_EQ(number(database), BackupNumber::ZeroLength);
    fs::resize_file(database, std::uintmax_t{1} << 31);  // of holes, on every disk that has them
    EXPECT_EQ(number(database), BackupNumber::Failed);
    fs::remove(database);
    auto open = test::NewStore(database);
    if (const pid_t child = fork(); child == 0) {
        const auto made = MakeBackup(database, folder.Path(), kNow);
        _exit(!made && made.error().number == engine::EngineNumber::InUse ? 0 : 1);
    } else {
        int status = 1;
        ::waitpid(child, &status, 0);
        EXPECT_EQ(status, 0) << "a database in use was copied";
    }
    open.reset();
    EXPECT_FALSE(MakeBackup(database, folder / "gone", kNow));
    // Left by a killed program long ago, and by one that may be at work.
    const fs::path old = PartName(BackupFileName(folder.Path(), database, {46000.25}));
    const fs::path young = PartName(BackupFileName(folder.Path(), database, {46347.25}));
    const fs::path other = PartName(BackupFileName(folder.Path(), folder / "b.bmr", {46000.25}));
    for (const fs::path& part : {old, young, other})
        WriteFile(part, "half");
    const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(48);
    fs::last_write_time(old, longAgo);
    fs::last_write_time(other, longAgo);
    const auto made = MakeBackup(database, folder.Path(), kNow);
    ASSERT_TRUE(made) << ErrorText(made.error());
    EXPECT_EQ(made->file, folder / "a261121120000.bmz");
    EXPECT_FALSE(fs::exists(old));
    EXPECT_TRUE(fs::exists(young));
    EXPECT_TRUE(fs::exists(other));
    const std::string before = ReadFile(database);
    fs::path target;
    ASSERT_TRUE(CompressFile(false, made->file, target,
                             {.chooseFolder = [&](const fs::path&) { return folder.Path(); }}));
    EXPECT_EQ(ReadFile(target), before);
}

TEST(CompressFile, AFullOrFailingDiskAndACancelLeaveNothing) {
    const TempFolder folder;
    const fs::path source = folder / "a.bmr";
    const std::string data = Mixture(2 << 20);
    WriteFile(source, data);
    fs::path backup = folder / "b.bmz";
    const auto onlySource = [&] {
        return std::distance(fs::directory_iterator(folder.Path()), fs::directory_iterator());
    };
    {
        const test::FullDisk full;
        const auto size = CompressFile(true, source, backup);
        ASSERT_FALSE(size);
        EXPECT_EQ(size.error().number, engine::EngineNumber::DiskFull);
    }
    EXPECT_EQ(onlySource(), 1);
    bool done = false;
    for (int call = 1; !done && call < 100; ++call) {
        const test::FailingDisk failing(call);
        const auto size = CompressFile(true, source, backup);
        done = !test::FailingDisk::Failed() || size;
        if (!size) {
            EXPECT_EQ(onlySource(), 1) << call;
        }
    }
    EXPECT_TRUE(done);
    fs::remove(backup);
    std::uint64_t last = 0;
    const auto stopAt = [&last](std::uint64_t most) {
        last = 0;
        return CompressPorts{.progress = [&last, most](std::uint64_t done, std::uint64_t all) {
            EXPECT_GE(done, last);
            EXPECT_LE(done, all);
            last = done;
            return done < most;
        }};
    };
    for (const std::uint64_t most : {0, 1 << 20}) {
        const auto size = CompressFile(true, source, backup, stopAt(most));
        ASSERT_FALSE(size);
        EXPECT_EQ(size.error().number, MessageNumber::Cancelled);
        EXPECT_EQ(onlySource(), 1);
    }
    ASSERT_TRUE(CompressFile(true, source, backup, stopAt(~std::uint64_t{0})));
    EXPECT_EQ(last, data.size());
    fs::remove(source);
    const auto size = Unpack(backup, folder / "a.bmq", stopAt(200000));
    ASSERT_FALSE(size);
    EXPECT_EQ(size.error().number, MessageNumber::Cancelled);
    {
        const test::FullDisk full;
        EXPECT_FALSE(Unpack(backup, folder / "a.bmq"));
    }
    EXPECT_EQ(onlySource(), 1);
    EXPECT_EQ(*Unpack(backup, folder / "a.bmq"), data.size());
}

}  // namespace
}  // namespace bmr::backup
