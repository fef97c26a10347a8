#include "host/files/zip_reader.h"

#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "host/files/plain_name.h"
#include "host/files/zip_format.h"
#include "host/text/ascii.h"

namespace host {

namespace {

constexpr std::size_t kLongestName = 255;
constexpr std::size_t kLongestExtra = 1024;
/// Deflate cannot do more: a head that promises more lies.
constexpr std::uint64_t kMostRatio = 1100;
/// Of the numbers that come after a file's bytes.
constexpr std::uint64_t kMostLateNumbers = 16;

// Bits of a head's flags.
constexpr unsigned kEncrypted = 1U << 0 | 1U << 6 | 1U << 13;
constexpr unsigned kLateNumbers = 1U << 3;
constexpr unsigned kHarmless = 1U << 1 | 1U << 2 | 1U << 11;  // how it was packed; UTF-8

constexpr char kGetAgain[] = "get it again from where it was made";
constexpr char kPackAgain[] = "unpack it and pack its files again with an ordinary program";
constexpr char kWithoutZip64[] = "pack the files again without ZIP64";
constexpr char kOnePart[] = "put the parts together first";
constexpr char kOtherHead[] = "has a head of its own that differs from the directory's";
constexpr char kNotFilled[] = "its files overlap, or it has bytes that belong to none of them";

[[noreturn]] void Refuse(std::string_view reason, std::string_view remedy) {
  throw std::runtime_error(fmt::format("{}: {}", reason, remedy));
}

/// `name` comes from the ZIP file and may hold anything.
std::string Quote(std::string_view name) {
  std::string shown = "\"";
  for (const char c : name.substr(0, kLongestName)) shown += c >= ' ' && c <= '~' ? c : '?';
  return shown + '"';
}

[[noreturn]] void RefuseFile(std::string_view name, std::string_view reason,
                             std::string_view remedy) {
  Refuse(fmt::format("its file {} {}", Quote(name), reason), remedy);
}

/// The numbers of a head, one after the other. The head has all of them.
class Numbers {
 public:
  explicit Numbers(std::string_view bytes) : bytes(bytes) {}

  std::uint16_t Take16() { return static_cast<std::uint16_t>(Take(2)); }
  std::uint32_t Take32() { return Take(4); }

 private:
  std::uint32_t Take(std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = size; i > 0; --i) {
      number = number << 8 | static_cast<unsigned char>(bytes.at(i - 1));
    }
    bytes.remove_prefix(size);
    return number;
  }

  std::string_view bytes;
};

/// What the directory says of a file and its own head repeats.
struct CommonHead {
  std::uint16_t flags, method;
  std::uint32_t crc, packedSize, size;
  std::uint16_t nameSize, extraSize;
};

CommonHead TakeCommonHead(Numbers& numbers) {
  CommonHead head{};
  numbers.Take16();  // version that is needed: what it needs is seen below
  head.flags = numbers.Take16();
  head.method = numbers.Take16();
  numbers.Take32();  // time
  head.crc = numbers.Take32();
  head.packedSize = numbers.Take32();
  head.size = numbers.Take32();
  head.nameSize = numbers.Take16();
  head.extraSize = numbers.Take16();
  return head;
}

void CheckFlags(const CommonHead& head, std::string_view name) {
  if ((head.flags & kEncrypted) != 0) {
    RefuseFile(name, "is encrypted", "pack the files again without a password");
  }
  if ((head.flags & ~(kLateNumbers | kHarmless)) != 0) {
    RefuseFile(name, "is packed in a way that is not known", kPackAgain);
  }
  const bool isKnown = head.method == static_cast<std::uint16_t>(ZipMethod::kStored) ||
                       head.method == static_cast<std::uint16_t>(ZipMethod::kDeflated);
  if (!isKnown) {
    RefuseFile(name, fmt::format("is packed by method {}", head.method),
               "pack the files again, with deflate");
  }
}

/// Names and links can be in there as well, and anything else; when and whose the file was is all
/// that is let pass.
void CheckExtra(std::string_view extra, std::string_view name) {
  constexpr std::uint16_t kZip64 = 0x0001;
  // NTFS times; times and owner as Info-ZIP writes them, old and new.
  constexpr std::array<std::uint16_t, 5> kHarmlessFields = {0x000A, 0x5455, 0x5855, 0x7855, 0x7875};
  constexpr std::size_t kFieldHead = 4;
  constexpr std::size_t kLongestField = 64;
  while (!extra.empty()) {
    if (extra.size() < kFieldHead) RefuseFile(name, "has a damaged head", kGetAgain);
    Numbers numbers(extra);
    const std::uint16_t kind = numbers.Take16();
    const std::size_t size = numbers.Take16();
    if (kind == kZip64) RefuseFile(name, "is ZIP64", kWithoutZip64);
    const bool isHarmless =
        std::find(kHarmlessFields.begin(), kHarmlessFields.end(), kind) != kHarmlessFields.end();
    if (!isHarmless || size > kLongestField || size > extra.size() - kFieldHead) {
      RefuseFile(name, fmt::format("has a field {:#06x}, which may hide something", kind),
                 kPackAgain);
    }
    extra.remove_prefix(kFieldHead + size);
  }
}

/// Refuses links, devices and all but files and folders that are what their names say.
void CheckKind(std::uint32_t attributes, const CommonHead& head, std::string_view name) {
  constexpr std::uint32_t kDosVolume = 0x08;
  constexpr std::uint32_t kDosFolder = 0x10;
  constexpr std::uint32_t kWindowsLink = 0x400;
  constexpr std::uint32_t kUnixKinds = 0170000;
  constexpr std::uint32_t kUnixFile = 0100000;
  constexpr std::uint32_t kUnixFolder = 0040000;
  const std::uint32_t kind = (attributes >> 16) & kUnixKinds;
  const bool isSaidFolder = (attributes & kDosFolder) != 0 || kind == kUnixFolder;
  const bool isSaidFile = kind == kUnixFile;
  const bool isOther = (attributes & (kDosVolume | kWindowsLink)) != 0 ||
                       (kind != 0 && kind != kUnixFile && kind != kUnixFolder);
  if (isOther) {
    RefuseFile(name, "is a link, or no file at all", "pack the file itself in its place");
  }
  // Some programs deflate even nothing, which takes two bytes.
  constexpr std::uint32_t kMostOfNothing = 2;
  const bool isEmpty = head.size == 0 && head.packedSize <= kMostOfNothing;
  if (name.ends_with('/') ? isSaidFile || !isEmpty : isSaidFolder) {
    RefuseFile(name, "is a file and a folder at once", kGetAgain);
  }
}

void CheckName(std::string_view name) {
  if (name.size() > kLongestName) RefuseFile(name, "has too long a name", "name it shorter");
  const bool isAscii =
      std::all_of(name.begin(), name.end(), [](char c) { return c >= ' ' && c <= '~'; });
  if (!isAscii) {
    RefuseFile(name, "has a name with other characters than those of ASCII",
               "name it plainly, or unpack it and give the folder");
  }
  std::string_view rest = name;
  if (rest.ends_with('/')) rest.remove_suffix(1);
  while (true) {
    const std::size_t end = std::min(rest.find('/'), rest.size());
    if (!IsPlainName(rest.substr(0, end))) {
      RefuseFile(name, "has a name that leads out of its folder, or to another file on Windows",
                 kGetAgain);
    }
    if (end == rest.size()) return;
    rest.remove_prefix(end + 1);
  }
}

void CheckSizes(const ZipEntry& entry, std::string_view name) {
  const bool isPossible = entry.isDeflated
                              ? entry.packedSize > 0 && entry.size / kMostRatio <= entry.packedSize
                              : entry.packedSize == entry.size;
  if (!isPossible) RefuseFile(name, "has sizes that cannot be true", kGetAgain);
}

/// Turns the bytes of a deflated file into what they were.
class Inflater {
 public:
  /// `target` has their size, which is less than ZIP64's.
  explicit Inflater(std::string& target) {
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
    stream.next_out = reinterpret_cast<Bytef*>(target.data());
    stream.avail_out = static_cast<uInt>(target.size());
  }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;
  ~Inflater() { inflateEnd(&stream); }

  /// Whether `packed` can be the next of them.
  bool Add(std::string_view packed) {
    // It only reads, whatever its declaration says.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    const int result = inflate(&stream, Z_NO_FLUSH);
    isComplete = result == Z_STREAM_END && stream.avail_out == 0;
    return (result == Z_OK || isComplete) && stream.avail_in == 0;
  }

  /// Whether they were all, and the target is full.
  bool IsComplete() const { return isComplete; }

 private:
  z_stream stream{};
  bool isComplete = false;
};

struct End {
  std::uint64_t directoryAt;
  std::uint64_t directorySize;
  std::uint64_t count;
};

/// `tail` is the end of the ZIP file, at most as long as an end with the longest comment.
End FindEnd(std::string_view tail, std::uint64_t fileSize) {
  constexpr std::string_view kSignature{"PK\5\6", 4};
  const std::size_t found = tail.rfind(kSignature);
  if (found == std::string_view::npos || found + kZipEndSize > tail.size()) {
    Refuse("it is no ZIP file, or its end is missing", "name another file, or get it again");
  }
  if (found + kZipEndSize != tail.size()) {
    Refuse("it has a comment, or something after its end", kPackAgain);
  }
  Numbers numbers(tail.substr(found));
  numbers.Take32();
  const unsigned thisDisk = numbers.Take16();
  const unsigned directoryDisk = numbers.Take16();
  const unsigned countHere = numbers.Take16();
  End end{};
  end.count = numbers.Take16();
  end.directorySize = numbers.Take32();
  end.directoryAt = numbers.Take32();
  const unsigned commentSize = numbers.Take16();
  if (end.count == kZipElsewhere16 || end.directorySize == kZipElsewhere32 ||
      end.directoryAt == kZipElsewhere32) {
    Refuse("it is ZIP64", kWithoutZip64);
  }
  if (thisDisk != 0 || directoryDisk != 0 || countHere != end.count) {
    Refuse("it is one part of several", kOnePart);
  }
  if (commentSize != 0 || end.directoryAt + end.directorySize + kZipEndSize != fileSize) {
    Refuse("its directory is not where its end says", kGetAgain);
  }
  return end;
}

std::string ReadPart(const ZipBytes& file, std::uint64_t offset, std::uint64_t size) {
  std::string bytes = file.Read(offset, size);
  if (bytes.size() != size) Refuse("it cannot be read, or has just changed", kGetAgain);
  return bytes;
}

/// A file or folder, as the directory has it.
struct ListedFile {
  std::string name;  ///< of a folder with "/" at its end
  CommonHead head;
  ZipEntry entry;
};

/// Takes the first file off `directory`.
ListedFile TakeListedFile(std::string_view& directory) {
  constexpr char kDamaged[] = "its directory is damaged";
  if (directory.size() < kZipDirectoryHeadSize) Refuse(kDamaged, kGetAgain);
  Numbers numbers(directory);
  if (numbers.Take32() != kZipDirectoryHead) Refuse(kDamaged, kGetAgain);
  numbers.Take16();  // who made it
  ListedFile file{.name = {}, .head = TakeCommonHead(numbers), .entry = {}};
  const CommonHead& head = file.head;
  const unsigned commentSize = numbers.Take16();
  const unsigned disk = numbers.Take16();
  numbers.Take16();  // whether it is text
  const std::uint32_t attributes = numbers.Take32();
  const std::uint32_t headAt = numbers.Take32();
  directory.remove_prefix(kZipDirectoryHeadSize);
  const std::size_t namesSize = std::size_t{head.nameSize} + head.extraSize;
  if (namesSize > directory.size()) Refuse(kDamaged, kGetAgain);
  file.name = directory.substr(0, head.nameSize);
  const std::string_view extra = directory.substr(head.nameSize, head.extraSize);
  directory.remove_prefix(namesSize);

  const std::string& name = file.name;
  CheckName(name);
  if (head.size == kZipElsewhere32 || head.packedSize == kZipElsewhere32 ||
      headAt == kZipElsewhere32) {
    RefuseFile(name, "is ZIP64", kWithoutZip64);
  }
  if (disk != 0) RefuseFile(name, "is in another part", kOnePart);
  if (commentSize != 0) RefuseFile(name, "has a comment", kPackAgain);
  CheckFlags(head, name);
  CheckExtra(extra, name);
  CheckKind(attributes, head, name);
  file.entry = {.headAt = headAt,
                .packedSize = head.packedSize,
                .size = head.size,
                .crc = head.crc,
                .isDeflated = head.method == static_cast<std::uint16_t>(ZipMethod::kDeflated)};
  CheckSizes(file.entry, name);
  return file;
}

bool IsFolder(const ListedFile& file) { return file.name.ends_with('/'); }

std::vector<ListedFile> ReadDirectory(const ZipBytes& file, const End& end) {
  if (end.directorySize > end.count * (kZipDirectoryHeadSize + kLongestName + kLongestExtra)) {
    Refuse(kNotFilled, kGetAgain);
  }
  const std::string bytes = ReadPart(file, end.directoryAt, end.directorySize);
  std::string_view directory = bytes;
  std::vector<ListedFile> listed;
  while (listed.size() < end.count) listed.push_back(TakeListedFile(directory));
  if (!directory.empty()) Refuse(kNotFilled, kGetAgain);
  return listed;
}

/// Refuses names that Windows takes for one.
void CheckNamesDiffer(const std::vector<ListedFile>& listed) {
  const auto refuse = [](std::string_view name) {
    Refuse("it has the name " + Quote(name) + " twice, on a system where case makes no difference",
           kGetAgain);
  };
  std::set<std::string> keys;
  for (const ListedFile& file : listed) {
    if (!keys.insert(LowerCase(file.name)).second) refuse(file.name);
  }
  for (const std::string& key : keys) {
    if (key.ends_with('/')) continue;
    // A file cannot be a folder as well, with or without a head of its own.
    const std::string asFolder = key + "/";
    const auto inside = keys.lower_bound(asFolder);
    if (inside != keys.end() && inside->starts_with(asFolder)) refuse(key);
  }
}

bool AgreesWith(const CommonHead& own, const CommonHead& listed) {
  // Who writes while packing does not know these numbers yet.
  const bool mayBeLate = (own.flags & kLateNumbers) != 0;
  const auto agree = [&](std::uint32_t one, std::uint32_t other) {
    return one == other || (mayBeLate && one == 0);
  };
  return own.flags == listed.flags && own.method == listed.method &&
         own.nameSize == listed.nameSize && agree(own.crc, listed.crc) &&
         agree(own.packedSize, listed.packedSize) && agree(own.size, listed.size);
}

/// Compares the file's own head with the directory, and finds its bytes. Returns where the next one
/// has to begin.
std::uint64_t FindFileEnd(const ZipBytes& file, std::uint64_t directoryAt, ListedFile& listed) {
  auto& [name, head, entry] = listed;
  entry.bytesAt = entry.headAt + kZipFileHeadSize + name.size();
  if (entry.bytesAt > directoryAt) RefuseFile(name, kOtherHead, kGetAgain);
  const std::string own = ReadPart(file, entry.headAt, kZipFileHeadSize + name.size());
  Numbers numbers(own);
  const bool isHead = numbers.Take32() == kZipFileHead;
  const CommonHead ownHead = TakeCommonHead(numbers);
  if (!isHead || !AgreesWith(ownHead, head) || !own.ends_with(name)) {
    RefuseFile(name, kOtherHead, kGetAgain);
  }
  const std::uint64_t end = entry.bytesAt + ownHead.extraSize + entry.packedSize;
  if (end > directoryAt) Refuse(kNotFilled, kGetAgain);
  CheckExtra(ReadPart(file, entry.bytesAt, ownHead.extraSize), name);
  entry.bytesAt += ownHead.extraSize;
  if ((head.flags & kLateNumbers) == 0) return end;

  // CRC and sizes, mostly with a signature before them.
  const std::string late = ReadPart(file, end, std::min(directoryAt - end, kMostLateNumbers));
  std::string expected;
  for (const std::uint32_t number : {kZipLateNumbers, head.crc, head.packedSize, head.size}) {
    AppendZipNumber(expected, number, sizeof(number));
  }
  if (late == expected) return end + expected.size();
  expected.erase(0, 4);
  if (!late.starts_with(expected)) RefuseFile(name, kOtherHead, kGetAgain);
  return end + expected.size();
}

}  // namespace

std::uint64_t ZipBytes::Size() const {
  const auto* bytes = std::get_if<std::string>(&place);
  return bytes == nullptr ? std::get<FileHandle>(place).Size() : bytes->size();
}

std::string ZipBytes::Read(std::uint64_t offset, std::uint64_t size) const {
  if (const auto* whole = std::get_if<std::string>(&place)) {
    return offset > whole->size() ? std::string() : whole->substr(offset, size);
  }
  std::string bytes(static_cast<std::size_t>(size), '\0');
  bytes.resize(std::get<FileHandle>(place).ReadAt(offset, bytes.data(), bytes.size()));
  return bytes;
}

ZipReader::ZipReader(ZipBytes given, std::uint64_t mostFiles) : file(std::move(given)) {
  constexpr std::uint64_t kLongestEnd = kZipEndSize + 0xFFFF;
  const std::uint64_t fileSize = file.Size();
  const std::uint64_t tailSize = std::min(fileSize, kLongestEnd);
  const End end = FindEnd(ReadPart(file, fileSize - tailSize, tailSize), fileSize);
  if (end.count > mostFiles) {
    throw std::runtime_error(fmt::format(
        "it has {} files, more than {}; --limit files=NUMBER allows more", end.count, mostFiles));
  }
  std::vector<ListedFile> listed = ReadDirectory(file, end);
  CheckNamesDiffer(listed);
  // In the order of their places, as they have to fill the file.
  std::sort(listed.begin(), listed.end(), [](const ListedFile& a, const ListedFile& b) {
    return a.entry.headAt < b.entry.headAt;
  });
  std::uint64_t filled = 0;
  for (ListedFile& one : listed) {
    if (one.entry.headAt != filled) Refuse(kNotFilled, kGetAgain);
    filled = FindFileEnd(file, end.directoryAt, one);
    if (!IsFolder(one)) entries[one.name] = one.entry;
  }
  if (filled != end.directoryAt) Refuse(kNotFilled, kGetAgain);
}

std::string ZipReader::Read(const ZipEntry& entry) const {
  constexpr char kDamaged[] = "it is damaged";
  std::string bytes;
  if (entry.isDeflated) {
    constexpr std::uint64_t kChunk = 1U << 16;
    bytes.resize(static_cast<std::size_t>(entry.size));
    Inflater inflater(bytes);
    for (std::uint64_t done = 0; done < entry.packedSize; done += kChunk) {
      const std::uint64_t size = std::min(kChunk, entry.packedSize - done);
      if (!inflater.Add(ReadPart(file, entry.bytesAt + done, size))) Refuse(kDamaged, kGetAgain);
    }
    if (!inflater.IsComplete()) Refuse(kDamaged, kGetAgain);
  } else {
    bytes = ReadPart(file, entry.bytesAt, entry.size);
  }
  const auto crc = crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  if (crc != entry.crc) Refuse(kDamaged, kGetAgain);
  return bytes;
}

}  // namespace host
