#include "tools/mkconvmap/file_writer.hpp"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "core/base/names.hpp"

namespace nls::mkconvmap {

namespace {

using Image = std::vector<unsigned char>;

void putName(ByteSpan record, format::Field field, const std::string& name) {
    std::memcpy(record.data() + field.offset, name.data(), name.size());
}

// Appends records to the file, each once.
class Placement {
public:
    explicit Placement(Image& image) : image_(image) {}

    uint32_t place(const DataRecord& record) {
        const auto same = [&record](const Placed& other) { return *other.record == record; };
        const auto found = std::find_if(placed_.begin(), placed_.end(), same);
        if (found != placed_.end()) return found->offset;
        const uint32_t offset = append(record);
        placed_.push_back({&record, offset});
        return offset;
    }

private:
    struct Placed {
        const DataRecord* record;
        uint32_t offset;
    };

    uint32_t append(const DataRecord& record) {
        const std::size_t offset = image_.size();
        image_.insert(image_.end(), record.bytes.begin(), record.bytes.end());
        for (const RecordArray& array : record.arrays) {
            const auto arrayOffset = static_cast<uint32_t>(image_.size());
            storeWord(image_.data() + offset + array.offsetAt, arrayOffset);
            appendArray(array.words);
        }
        return static_cast<uint32_t>(offset);
    }

    // The prefix isn't read; it holds the number of words in digits, for those who look at the file.
    void appendArray(const std::vector<uint16_t>& words) {
        char prefix[format::ucs2::kArrayPrefix + 1];
        std::snprintf(prefix, sizeof prefix, "%06u", static_cast<unsigned>(words.size() % 1000000));
        image_.insert(image_.end(), prefix, prefix + format::ucs2::kArrayPrefix);
        const auto* const bytes = reinterpret_cast<const unsigned char*>(words.data());
        image_.insert(image_.end(), bytes, bytes + words.size() * sizeof(uint16_t));
    }

    Image& image_;
    std::vector<Placed> placed_;
};

void putHeader(ByteSpan image, std::size_t entryCount) {
    format::putDecimal(image, format::header::kMagic, format::header::kMagicNumber);
    format::putDecimal(image, format::header::kFirstEntry, format::header::kSize);
    format::putDecimal(image, format::header::kVersion, format::header::kNewestVersion);
    format::putDecimal(image, format::header::kEntryCount, static_cast<uint32_t>(entryCount));
}

// All of an entry but its offset.
void putEntry(ByteSpan record, const FileEntry& entry) {
    putName(record, format::entry::kName1, entry.name1);
    putName(record, format::entry::kName2, entry.name2);
    format::putDecimal(record, format::entry::kOffset, 0);
    format::putDecimal(record, format::entry::kSubKind, entry.subKind);
    record[format::entry::kRawByte.offset] = entry.rawByte;
    format::putDecimal(record, format::entry::kType, static_cast<uint32_t>(entry.type));
}

std::string describe(const FileEntry& entry) {
    return entry.name2.empty() ? entry.name1 : entry.name1 + " to " + entry.name2;
}

}  // namespace

void FileWriter::add(FileEntry entry) {
    checkedName(entry.place, entry.name1);
    if (entry.type != format::EntryType::attributes) checkedName(entry.place, entry.name2);
    if (entries_.size() == format::entry::kMostEntries) {
        fail(entry.place, "the entry " + describe(entry) + " is one more than the " +
                              std::to_string(format::entry::kMostEntries) + " that the contents can hold");
    }
    for (const FileEntry& other : entries_) {
        if (other.type != entry.type || !sameName(other.name1.c_str(), entry.name1.c_str()) ||
            !sameName(other.name2.c_str(), entry.name2.c_str())) {
            continue;
        }
        fail(entry.place,
             describe(entry) + " is entered already, at " + other.place.file + ":" + std::to_string(other.place.line));
    }
    entries_.push_back(std::move(entry));
}

std::vector<unsigned char> FileWriter::build() const {
    Image image(format::header::kSize + entries_.size() * format::entry::kSize);
    putHeader(image, entries_.size());
    Placement placement{image};
    for (std::size_t index = 0; index < entries_.size(); ++index) {
        const FileEntry& entry = entries_[index];
        const std::size_t start = format::header::kSize + index * format::entry::kSize;
        putEntry(ByteSpan{image}.subspan(start, format::entry::kSize), entry);
        if (!entry.record) continue;
        const uint32_t offset = placement.place(*entry.record);
        if (!format::putDecimal(ByteSpan{image}.subspan(start), format::entry::kOffset, offset)) {
            fail(entry.place,
                 "the record of " + describe(entry) + " begins behind the last offset that the contents hold");
        }
    }
    return image;
}

}  // namespace nls::mkconvmap
