// Loading of the builds, each case in a process of its own: folders in which a file or a function of a pack is missing.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>

#include "icu/control.hpp"
#include "icu/converter.hpp"
#include "icu/loader.hpp"
#include "tests/icu/icu_world.hpp"

namespace nls {
namespace {

namespace fs = std::filesystem;
using test::useFolder;

// Runs `what` in a child; what it finds wrong goes to its exit code, and its messages to the terminal.
void inProcessOfItsOwn(const std::string& why, const std::function<void()>& what) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        what();
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int state = 0;
    ASSERT_EQ(waitpid(child, &state, 0), child);
    EXPECT_TRUE(WIFEXITED(state) && WEXITSTATUS(state) == 0) << why << ": state " << state;
}

// A copy of the packs in a folder that can be spoilt.
class Folder {
public:
    Folder() {
        char name[] = "/tmp/nls-icu-XXXXXX";
        path_ = mkdtemp(name);
        fs::copy(NLS_ICU_PACKS "/lib", path_ / "lib");
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(path_); }

    std::string name() const { return path_.string(); }
    fs::path file(int row, IcuLibrary library) const { return name() + icuarray[row].libraries[library]; }
    void remove(int row, IcuLibrary library) const { fs::remove(file(row, library)); }
    void restore(int row, IcuLibrary library) const {
        fs::copy_file(std::string{NLS_ICU_PACKS} + icuarray[row].libraries[library], file(row, library),
                      fs::copy_options::overwrite_existing);
    }
    // The library offers the function under another name.
    void rename(int row, IcuLibrary library, const std::string& function) const {
        std::ifstream in{file(row, library), std::ios::binary};
        std::string bytes{std::istreambuf_iterator<char>{in}, {}};
        const std::string symbol = '\0' + function + icuarray[row].entrySuffix + '\0';
        std::size_t found = 0;
        for (std::size_t at = bytes.find(symbol); at != std::string::npos; at = bytes.find(symbol, at + 1), ++found)
            bytes[at + 1] = 'X';
        EXPECT_NE(found, 0U) << symbol;
        fs::remove(file(row, library));
        std::ofstream{file(row, library), std::ios::binary} << bytes;
    }

private:
    fs::path path_;
};

struct Levels {
    int32_t base, newer;
};
void expectLevels(Levels expected) {
    EXPECT_EQ(icuarray[0].loadLevel, expected.base);
    EXPECT_EQ(icuarray[1].loadLevel, expected.newer);
}

nlsStatus load(int row, int32_t level) {
    return UL_init_icu(level, icuarray[row]);
}

// Opens and closes what the level is for.
void expectWorks(int row) {
    const OpenedConverter utf8 = openConverter("utf8");
    ASSERT_NE(utf8.converter, nullptr);
    convFuncs().ucnv_close(utf8.converter);
    if (loadLevel(icuarray[row]) < kCollates) return;
    int32_t status = 77;
    void* const collator = UL_ucol_open(&icuarray[row], "", &status);
    EXPECT_NE(collator, nullptr);
    EXPECT_EQ(status, 0);
}

TEST(Loader, RisesToTheLevelAskedFor) {
    const struct {
        int row;
        int32_t level;
        Levels after;
    } rows[] = {{0, kConverts, {1, 0}}, {0, kCollates, {2, 0}}, {1, kConverts, {1, 1}}, {1, kCollates, {1, 2}}};
    for (const auto& row : rows) {
        inProcessOfItsOwn("row " + std::to_string(row.row) + ", level " + std::to_string(row.level), [&] {
            EXPECT_EQ(gicuctl.convFuncs, nullptr);
            EXPECT_EQ(load(row.row, row.level), NLS_OK);
            expectLevels(row.after);
            EXPECT_EQ(gicuctl.convFuncs, icuarray[0].entryPoints);
            EXPECT_EQ(gicuctl.baseFuncs, icuarray[0].entryPoints);
            EXPECT_EQ(gicuctl.baseVersion, &icuarray[0]);
            EXPECT_EQ(icuarray[0].entryPoints->slots[29], nullptr);
            for (unsigned slot = 0; slot < nlsIcuFuncs::kSlots; ++slot) {
                const bool conversion = slot < 10;
                const bool collation = slot == 18 || slot == 20 || (slot >= 22 && slot <= (row.row == 0 ? 28U : 29U));
                EXPECT_EQ(icuarray[row.row].entryPoints->slots[slot] != nullptr,
                          conversion || (row.level == kCollates && collation))
                    << slot;
            }
            expectWorks(row.row);
            EXPECT_EQ(load(0, kConverts), NLS_OK);
            expectLevels(row.after);
        });
    }
}

struct Loss {
    const char* why;
    int row;  // of the loss, and of the request
    IcuLibrary library;
    const char* function;  // null: the file
    int asked;
    int32_t level;
    nlsStatus status;
    Levels after;
};

void expectLoss(const Loss& loss) {
    const std::string why = std::string{loss.why} + (loss.function != nullptr ? loss.function : "");
    inProcessOfItsOwn(why, [&] {
        const Folder folder;
        useFolder(folder.name().c_str());
        if (loss.function == nullptr)
            folder.remove(loss.row, loss.library);
        else
            folder.rename(loss.row, loss.library, loss.function);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(load(loss.asked, loss.level), loss.status) << why;
            expectLevels(loss.after);
        }
        if (loss.status == NLS_OK) return expectWorks(loss.asked);
        if (loss.function != nullptr) return;  // a library once loaded stays, whatever becomes of its file
        folder.restore(loss.row, loss.library);
        EXPECT_EQ(load(loss.asked, loss.level), NLS_OK) << why;
        expectWorks(loss.asked);
    });
}

TEST(Loader, AFileThatIsMissingFailsUntilItIsThere) {
    const Loss losses[] = {
        {"base data", 0, kDataLibrary, nullptr, 0, kConverts, NLS_ICU_LOAD, {0, 0}},
        {"base common", 0, kCommonLibrary, nullptr, 0, kConverts, NLS_ICU_LOAD, {0, 0}},
        {"base i18n", 0, kI18nLibrary, nullptr, 0, kCollates, NLS_ICU_LOAD, {1, 0}},
        {"base i18n isn't asked for", 0, kI18nLibrary, nullptr, 0, kConverts, NLS_OK, {1, 0}},
        {"4.8 without the base's common", 0, kCommonLibrary, nullptr, 1, kCollates, NLS_ICU_LOAD, {0, 0}},
        {"4.8 without the base's i18n", 0, kI18nLibrary, nullptr, 1, kCollates, NLS_OK, {1, 2}},
        {"4.8 data", 1, kDataLibrary, nullptr, 1, kCollates, NLS_ICU_LOAD, {1, 0}},
        {"4.8 common", 1, kCommonLibrary, nullptr, 1, kCollates, NLS_ICU_LOAD, {1, 0}},
        {"4.8 i18n", 1, kI18nLibrary, nullptr, 1, kCollates, NLS_ICU_LOAD, {1, 0}},
    };
    for (const Loss& loss : losses) expectLoss(loss);
}

TEST(Loader, AFunctionThatIsMissingFails) {
    for (const char* const name :
         {"ucnv_open", "ucnv_close", "ucnv_fromUnicode", "ucnv_toUnicode", "ucnv_fromUChars", "ucnv_toUChars",
          "ucnv_reset", "ucnv_resetFromUnicode", "ucnv_resetToUnicode", "ucnv_flushCache"}) {
        expectLoss({"base ", 0, kCommonLibrary, name, 0, kConverts, NLS_ICU_LOAD, {0, 0}});
        // It converts for nobody; to collate it needs none of them.
        expectLoss({"4.8 ", 1, kCommonLibrary, name, 1, kCollates, NLS_OK, {1, 2}});
    }
    for (const char* const name :
         {"ucol_open", "ucol_getRules", "ucol_getSortKey", "ucol_setStrength", "ucol_strcoll", "ucol_countAvailable",
          "ucol_getAvailable", "ucol_close", "ucol_getVersion", "ucol_getUCAVersion"}) {
        if (std::string_view{name} != "ucol_getUCAVersion")
            expectLoss({"base ", 0, kI18nLibrary, name, 0, kCollates, NLS_ICU_LOAD, {1, 0}});
        expectLoss({"4.8 ", 1, kI18nLibrary, name, 1, kCollates, NLS_ICU_LOAD, {1, 0}});
    }
    expectLoss({"to convert 4.8 needs ", 1, kCommonLibrary, "ucnv_reset", 1, kConverts, NLS_ICU_LOAD, {1, 0}});
}

TEST(Loader, LaterFunctionsStayUnknown) {
    inProcessOfItsOwn("base", [] {
        const Folder folder;
        useFolder(folder.name().c_str());
        folder.rename(0, kCommonLibrary, "ucnv_reset");
        EXPECT_EQ(load(0, kConverts), NLS_ICU_LOAD);
        for (unsigned slot = 0; slot < 10; ++slot)
            EXPECT_EQ(icuarray[0].entryPoints->slots[slot] != nullptr, slot < 6) << slot;
        EXPECT_EQ(gicuctl.convFuncs, icuarray[0].entryPoints);
    });
}

TEST(Loader, TheFolderIsTheFirstVariableThatIsSet) {
    // A folder whose name is as long as told, by way of repeated "./".
    const auto ofLength = [](std::size_t length) {
        std::string path = NLS_ICU_PACKS;
        while (path.size() + 1 < length) path += "/.";
        if (path.size() < length) path.insert(0, "/");
        return path;
    };
    const std::size_t most = 302 - std::strlen(icuarray[0].libraries[kDataLibrary]);
    const struct {
        const char* why;
        const char* binpathx;
        const char* qrd;
        nlsStatus status;
    } rows[] = {
        {"BINPATHX", NLS_ICU_PACKS, nullptr, NLS_OK},
        {"QRD", nullptr, NLS_ICU_PACKS, NLS_OK},
        {"neither", nullptr, nullptr, NLS_ICU_LOAD},
        {"BINPATHX counts alone", "/nowhere", NLS_ICU_PACKS, NLS_ICU_LOAD},
        {"BINPATHX is set to nothing", "", NLS_ICU_PACKS, NLS_ICU_LOAD},
        {"BINPATHX in front of QRD", NLS_ICU_PACKS, "/nowhere", NLS_OK},
    };
    for (const auto& row : rows) {
        inProcessOfItsOwn(row.why, [&] {
            unsetenv("BINPATHX");
            unsetenv("QRD");
            if (row.binpathx != nullptr) setenv("BINPATHX", row.binpathx, 1);
            if (row.qrd != nullptr) setenv("QRD", row.qrd, 1);
            EXPECT_EQ(load(0, kConverts), row.status) << row.why;
        });
    }
    for (const std::size_t length : {most, most + 1, most + 10, std::size_t{5000}}) {
        inProcessOfItsOwn("of " + std::to_string(length) + " bytes", [&] {
            const std::string path = ofLength(length);
            ASSERT_EQ(path.size(), length);
            useFolder(path.c_str());
            EXPECT_EQ(load(0, kConverts), length <= most ? NLS_OK : NLS_ICU_LOAD);
        });
    }
}

TEST(Loader, HandlesComeAndGo) {
    inProcessOfItsOwn("", [] {
        const auto listIsWhole = [] {
            uint32_t length = 0;
            return std::strlen(nlsICUCollationList(&length)) == 1401 && length == 1401;
        };
        uint32_t length = 7;
        EXPECT_EQ(nlsICUCollationList(&length), nullptr);
        EXPECT_EQ(length, 0U);
        std::unique_ptr<test::IcuWorld> second;
        auto first = std::make_unique<test::IcuWorld>();
        expectLevels({0, 0});  // opening a handle loads nothing
        const nlsLocale* const german = first->locale("ICU-de");
        test::ThreadBlock block;
        EXPECT_EQ(test::compare(german, block.get(), "a", "b", 1), -1);
        second = std::make_unique<test::IcuWorld>();
        EXPECT_EQ(test::compare(german, block.get(), "b", "a", 1), 1);
        EXPECT_EQ(nlsTlsClose(block.get()), NLS_OK);
        first.reset();
        EXPECT_TRUE(listIsWhole());
        expectLevels({2, 0});
        EXPECT_EQ(test::compare(second->locale("ICU_48-sv"), block.get(), "z", "ö", 1), -1);
        expectLevels({2, 2});
    });
}

TEST(Loader, FailuresArriveAsEachRouteTellsThem) {
    inProcessOfItsOwn("nothing is installed", [] {
        useFolder("/nowhere");
        test::IcuWorld world;
        nlsLocale* locale = nullptr;
        EXPECT_EQ(world.create("ICU-de", locale), NLS_NO_MEM);
        EXPECT_EQ(world.create("ICU_48-de", locale), NLS_NO_MEM);
        EXPECT_EQ(world.create("ICU_47-de", locale), NLS_NO_COLL_TABLE);
        EXPECT_EQ(world.create("basic", locale), NLS_OK);
        EXPECT_EQ(test::compare(locale, nullptr, "a", "b", 1), -1);
        void* converter = &world;
        EXPECT_EQ(ccGetICUConvPtr("utf8", &converter), NLS_NO_CONV_TABLE);
        EXPECT_EQ(converter, &world);
        uint32_t status = 77;
        EXPECT_EQ(UL_ucnv_open("utf8", &status), nullptr);
        EXPECT_EQ(status, uint32_t{NLS_ICU_LOAD});

        nlsCollStruct coll{};
        nlsIcuInfo info{};
        ASSERT_EQ(nlsIcuFillInfo(&coll, &info, "ICU-de"), NLS_OK);
        test::ThreadBlock block;
        uint16_t result = 0x5555;
        const auto* const text = test::bytesOf("a");
        EXPECT_EQ(nlsIcuCompare(text, text, block.get(), coll.exactMap, 6, -1, -1, &result), NLS_NO_COLL_TABLE);
        EXPECT_EQ(block.get()->icuStatus, NLS_ICU_LOAD);
        EXPECT_EQ(block.get()->icuColl, &info);
        EXPECT_EQ(nlsIcuCompare(text, text, nullptr, coll.exactMap, 6, -1, -1, &result), NLS_BAD_ARG);
        EXPECT_EQ(result, 0x5555);
        unsigned char key[] = {9, 9};
        for (nlsTlsBlock* const tls : {block.get(), static_cast<nlsTlsBlock*>(nullptr)}) {
            key[0] = 9;
            nlsIcuSortKey(key, text, tls, 2, coll.exactMap, 6, 0);
            EXPECT_EQ(key[0], 0);
            EXPECT_EQ(key[1], 9);
        }
        EXPECT_EQ(UL_ucol_strcoll(&icuarray[0], nullptr, nullptr, 0, nullptr, 0), -2);
        EXPECT_EQ(UL_ucol_getSortKey(&icuarray[0], nullptr, nullptr, 0, key, 2), 0);
        UL_ucol_setStrength(&icuarray[0], nullptr, 0);
    });
}

// A collation that fails stays on the handle's list, and is nobody's: the next request makes another.
TEST(Loader, ACollationThatFailedStaysOnTheList) {
    inProcessOfItsOwn("the files appear later", [] {
        const Folder folder;
        useFolder(folder.name().c_str());
        folder.remove(0, kI18nLibrary);
        test::IcuWorld world;
        nlsLocale *failed = nullptr, *locale = nullptr;
        EXPECT_EQ(world.create("ICU-sv", failed), NLS_NO_MEM);
        EXPECT_EQ(world.create("ICU-sv", failed), NLS_NO_MEM);
        folder.restore(0, kI18nLibrary);
        EXPECT_EQ(world.create("ICU-xx", failed), NLS_NO_MEM) << "ICU doesn't know it";
        EXPECT_EQ(failed, nullptr);
        ASSERT_EQ(world.create("ICU-sv", locale), NLS_OK);
        const struct {
            const char* name;
            int32_t kind;
        } rows[] = {{"ICU-sv", 5}, {"ICU-xx", -2}, {"ICU-sv", -2}, {"ICU-sv", -2}};
        const nlsCollStruct* coll = locale->coll;
        for (const auto& row : rows) {
            ASSERT_NE(coll, nullptr) << row.kind;
            EXPECT_STREQ(coll->collName, row.name);
            EXPECT_EQ(coll->collKind, row.kind);
            EXPECT_STREQ(coll->collCharset, "UTF-8");
            coll = coll->nextColl;
        }
        EXPECT_EQ(coll, nullptr);
        EXPECT_EQ(test::compare(locale, nullptr, "z", "å", 1), -1);
    });
}

TEST(Loader, TellsWhyALibraryCantBeHad) {
    uint32_t status = 77;
    const char* why = nullptr;
    EXPECT_EQ(nlsLoadLibrary("/nowhere.so", &status, &why), nullptr);
    EXPECT_EQ(status, uint32_t{NLS_ICU_LOAD});
    EXPECT_NE(std::string{why}.find("/nowhere.so"), std::string::npos);
    EXPECT_EQ(nlsLoadLibrary(std::string(303, '/').c_str(), &status, &why), nullptr);
    status = 77;
    void* const library =
        nlsLoadLibrary((NLS_ICU_PACKS + std::string{icuarray[0].libraries[0]}).c_str(), &status, &why);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(status, 77U);
    EXPECT_NE(nlsGetProcAddress(library, "nls_packed_icu_2_4"), nullptr);
    EXPECT_EQ(nlsGetProcAddress(library, "nls_packed_icu"), nullptr);
}

}  // namespace
}  // namespace nls
