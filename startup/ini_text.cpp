#include "startup/ini_text.h"

#include <algorithm>
#include <numeric>

namespace zv {
namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";  // what some editors put in front of UTF-8

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// A name or value as one line can hold it.
std::string onOneLine(std::string_view text) {
    std::string out(text);
    for (char& c : out) {
        if (c == '\r' || c == '\n' || c == '\0') c = ' ';
    }
    return out;
}

std::string_view withoutQuotes(std::string_view value) {
    if (value.size() >= 2 && value.front() == value.back() &&
        (value.front() == '"' || value.front() == '\'')) {
        value = value.substr(1, value.size() - 2);
    }
    return value.substr(0, value.find('\0'));
}

/// False for a key that would read as something else.
bool writableKey(std::string_view text) {
    const std::string line = onOneLine(text);
    const std::string_view key = trimmedBlanks(line);
    return !key.empty() && key.front() != '[' && key.front() != ';' &&
           key.find('=') == std::string_view::npos;
}

bool writableSection(std::string_view text) { return !trimmedBlanks(onOneLine(text)).empty(); }

/// False for a name that nobody can ask for, or that is noise: a file of random bytes has no sections.
bool askable(std::string_view name) {
    const auto control = [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; };
    return !name.empty() && std::none_of(name.begin(), name.end(), control);
}

/// Offsets of the text without the blanks around it.
std::pair<std::size_t, std::size_t> trimmedRange(std::string_view bytes, std::size_t begin, std::size_t end) {
    while (begin < end && isBlank(bytes[begin])) ++begin;
    while (end > begin && isBlank(bytes[end - 1])) --end;
    return {begin, end};
}

}  // namespace

std::string_view trimmedBlanks(std::string_view text) {
    const auto [begin, end] = trimmedRange(text, 0, text.size());
    return text.substr(begin, end - begin);
}

void IniText::assign(std::string bytes) {
    bytes_ = std::move(bytes);
    encoding_ = encodingOf(bytes_);
    const std::size_t newline = bytes_.find('\n');
    lineEnd_ = newline == std::string::npos || (newline > 0 && bytes_[newline - 1] == '\r') ? "\r\n" : "\n";
    findSections();
}

// ---- finding
// -----------------------------------------------------------------------------------------------

void IniText::findSections() {
    sections_.clear();
    const std::size_t top = bytes_.starts_with(kMark) ? kMark.size() : 0;
    std::size_t from = top;
    for (std::size_t at = bytes_.find('[', from); at != std::string::npos; at = bytes_.find('[', from)) {
        std::size_t begin = at;
        while (begin > top && isBlank(bytes_[begin - 1]) && bytes_[begin - 1] != '\n') --begin;
        if (begin != top && bytes_[begin - 1] != '\n') {
            from = at + 1;
            continue;
        }
        const std::size_t newline = bytes_.find('\n', at);
        from = newline == std::string::npos ? bytes_.size() : newline + 1;
        const std::size_t close = view(at, from).rfind(']');
        if (close == std::string::npos) continue;  // a malformed line like any other
        const auto [name, nameEnd] = trimmedRange(bytes_, at + 1, at + close);
        if (!sections_.empty()) sections_.back().end = begin;
        Section section{};
        section.hash = foldedHash(view(name, nameEnd), encoding_);
        section.begin = begin;
        section.body = from;
        section.end = bytes_.size();
        section.name = name;
        section.nameEnd = nameEnd;
        sections_.push_back(std::move(section));
    }
    sectionsByHash_.resize(sections_.size());
    std::iota(sectionsByHash_.begin(), sectionsByHash_.end(), 0U);
    std::stable_sort(sectionsByHash_.begin(), sectionsByHash_.end(),
                     [this](auto a, auto b) { return sections_[a].hash < sections_[b].hash; });
}

void IniText::index(Section& section) {
    if (section.indexed) return;
    section.indexed = true;
    section.keys.clear();
    section.lastLineEnd = static_cast<std::uint32_t>(section.body - section.begin);
    const auto offset = [&](std::size_t at) { return static_cast<std::uint32_t>(at - section.begin); };
    for (std::size_t line = section.body; line < section.end;) {
        const std::size_t newline = bytes_.find('\n', line);
        const std::size_t next =
            newline == std::string::npos ? section.end : std::min(newline + 1, section.end);
        const auto [begin, end] = trimmedRange(bytes_, line, next);
        if (begin != end && bytes_[begin] != ';') {
            section.lastLineEnd = offset(next);
            const std::size_t equals = view(begin, end).find('=');
            if (equals != std::string::npos && equals > 0) {
                const auto [name, nameEnd] = trimmedRange(bytes_, begin, begin + equals);
                const auto [value, valueEnd] = trimmedRange(bytes_, begin + equals + 1, end);
                section.keys.push_back({foldedHash(view(name, nameEnd), encoding_), offset(line),
                                        offset(next), offset(name), offset(nameEnd), offset(value),
                                        offset(valueEnd)});
            }
        }
        line = next;
    }
    section.byHash.resize(section.keys.size());
    std::iota(section.byHash.begin(), section.byHash.end(), 0U);
    std::stable_sort(section.byHash.begin(), section.byHash.end(),
                     [&](auto a, auto b) { return section.keys[a].hash < section.keys[b].hash; });
}

const IniText::Section* IniText::find(std::string_view name) const {
    if (name.empty()) return nullptr;
    const std::size_t hash = foldedHash(name, encoding_);
    auto it = std::lower_bound(sectionsByHash_.begin(), sectionsByHash_.end(), hash,
                               [this](std::uint32_t i, std::size_t h) { return sections_[i].hash < h; });
    for (; it != sectionsByHash_.end() && sections_[*it].hash == hash; ++it) {
        const Section& s = sections_[*it];
        if (sameFolded(view(s.name, s.nameEnd), name, encoding_)) return &s;
    }
    return nullptr;
}

IniText::Section* IniText::find(std::string_view name) {
    return const_cast<Section*>(static_cast<const IniText*>(this)->find(name));
}

const IniText::Key* IniText::find(Section& section, std::string_view key) {
    index(section);
    const std::size_t hash = foldedHash(key, encoding_);
    auto it = std::lower_bound(section.byHash.begin(), section.byHash.end(), hash,
                               [&](std::uint32_t i, std::size_t h) { return section.keys[i].hash < h; });
    for (; it != section.byHash.end() && section.keys[*it].hash == hash; ++it) {
        const Key& k = section.keys[*it];
        if (sameFolded(view(section.begin + k.name, section.begin + k.nameEnd), key, encoding_)) return &k;
    }
    return nullptr;
}

// ---- reading
// -----------------------------------------------------------------------------------------------

bool IniText::encoded(std::string_view text, std::string& bytes) const {
    const bool all = fromUtf8(onOneLine(text), encoding_, bytes);
    bytes = std::string(trimmedBlanks(bytes));
    return all;
}

std::optional<std::string> IniText::value(std::string_view section, std::string_view key) {
    std::string name;
    if (!encoded(section, name)) return std::nullopt;
    Section* s = find(name);
    if (s == nullptr || !encoded(key, name)) return std::nullopt;
    const Key* k = find(*s, name);
    if (k == nullptr) return std::nullopt;
    std::string text = toUtf8(withoutQuotes(view(s->begin + k->value, s->begin + k->valueEnd)), encoding_);
    if (text.size() > kLongestValue) text.resize(firstCharacters(text, kLongestValue).size());
    return text;
}

std::vector<IniText::Line> IniText::lines(std::string_view section) {
    std::vector<Line> out;
    std::string name;
    Section* s = encoded(section, name) ? find(name) : nullptr;
    if (s == nullptr) return out;
    index(*s);
    for (const Key& k : s->keys) {
        const std::string_view key = view(s->begin + k.name, s->begin + k.nameEnd);
        if (!askable(key) || find(*s, key) != &k) continue;  // a second one of that name
        std::string text = toUtf8(withoutQuotes(view(s->begin + k.value, s->begin + k.valueEnd)), encoding_);
        if (text.size() > kLongestValue) text.resize(firstCharacters(text, kLongestValue).size());
        out.emplace_back(toUtf8(key, encoding_), std::move(text));
    }
    return out;
}

std::vector<std::string> IniText::sectionNames() const {
    std::vector<std::string> out;
    out.reserve(sections_.size());
    for (const Section& s : sections_) {
        const std::string_view name = view(s.name, s.nameEnd);
        if (askable(name) && find(name) == &s) out.push_back(toUtf8(name, encoding_));
    }
    return out;
}

bool IniText::hasSection(std::string_view section) const {
    std::string name;
    return encoded(section, name) && find(name) != nullptr;
}

// ---- changing
// ----------------------------------------------------------------------------------------------

void IniText::becomeUtf8() {
    const std::size_t top = bytes_.starts_with(kMark) ? kMark.size() : 0;
    bytes_.replace(top, std::string::npos, toUtf8(view(top, bytes_.size()), encoding_));
    encoding_ = Encoding::utf8;
    findSections();
}

/// Bytes that happen to be valid UTF-8 after a change would be read as such the next time.
void IniText::settleEncoding() {
    if (encoding_ == Encoding::windows1252 && validUtf8(bytes_)) becomeUtf8();
}

void IniText::closeLastLine() {
    if (bytes_.empty() || bytes_.back() == '\n' || bytes_ == kMark) return;
    bytes_ += lineEnd_;
    findSections();
}

/// Replaces bytes inside the body of one section.
void IniText::splice(std::size_t begin, std::size_t end, std::string_view with) {
    bytes_.replace(begin, end - begin, with);
    const std::size_t grown = with.size() - (end - begin);  // wraps round for what shrinks, and back below
    auto behind = std::partition_point(sections_.begin(), sections_.end(),
                                       [&](const Section& s) { return s.begin < begin || s.begin < end; });
    if (behind != sections_.begin()) {
        Section& inside = *(behind - 1);
        inside.end += grown;
        inside.indexed = false;
    }
    for (; behind != sections_.end(); ++behind) {
        behind->begin += grown;
        behind->body += grown;
        behind->end += grown;
        behind->name += grown;
        behind->nameEnd += grown;
    }
}

/// Makes the encoding one that holds all of `texts`, which are going to be written.
void IniText::makeRoomFor(std::initializer_list<std::string_view> texts) {
    std::string bytes;
    const auto fits = [&](std::string_view text) { return fromUtf8(text, encoding_, bytes); };
    if (!std::all_of(texts.begin(), texts.end(), fits)) becomeUtf8();
}

bool IniText::put(std::string_view section, std::string_view key, std::string_view value) {
    if (!writableSection(section) || !writableKey(key)) return false;
    if (!value.empty()) makeRoomFor({section, key, value});
    std::string s;
    std::string k;
    std::string v;
    if (!encoded(section, s) || !encoded(key, k))
        return false;  // a name that cannot be there to be taken out
    fromUtf8(onOneLine(value), encoding_, v);
    const bool changed = putEncoded(s, k, v);
    if (changed) settleEncoding();
    return changed;
}

bool IniText::putEncoded(std::string_view section, std::string_view key, std::string_view value) {
    Section* s = find(section);
    const Key* k = s == nullptr ? nullptr : find(*s, key);
    if (k != nullptr && value.empty()) {
        // All lines of that name: a second one would come to light otherwise.
        std::vector<std::pair<std::size_t, std::size_t>> gone;
        for (const Key& line : s->keys) {
            if (line.hash == k->hash &&
                sameFolded(view(s->begin + line.name, s->begin + line.nameEnd), key, encoding_)) {
                gone.emplace_back(s->begin + line.begin, s->begin + line.end);
            }
        }
        for (auto it = gone.rbegin(); it != gone.rend(); ++it) splice(it->first, it->second, {});
        return true;
    }
    if (value.empty()) return false;
    if (k != nullptr) {
        // A plain value takes the place of the old one, the blanks around it stay; one with blanks at its
        // ends takes all there is behind the equals sign.
        std::size_t begin = s->begin + k->value;
        std::size_t end = s->begin + k->valueEnd;
        if (trimmedBlanks(value).size() != value.size()) {
            begin = bytes_.find('=', s->begin + k->nameEnd) + 1;
            end = s->begin + k->end;
            while (end > begin && (bytes_[end - 1] == '\n' || bytes_[end - 1] == '\r')) --end;
        }
        if (view(begin, end) == value) return false;
        splice(begin, end, value);
        return true;
    }
    std::string line;
    line.append(key).append("=").append(value).append(lineEnd_);
    if (s != nullptr) {
        const std::size_t at = s->begin + s->lastLineEnd;
        const bool cutShort = bytes_[at - 1] != '\n';  // the file's last line
        splice(at, at, cutShort ? lineEnd_ + line : line);
        if (cutShort) findSections();
        return true;
    }
    closeLastLine();
    bytes_.append("[").append(section).append("]").append(lineEnd_).append(line);
    findSections();
    return true;
}

bool IniText::eraseSection(std::string_view section) {
    std::string name;
    const Section* first = encoded(section, name) ? find(name) : nullptr;
    if (first == nullptr) return false;
    for (std::size_t i = sections_.size(); i-- > 0;) {
        const Section& s = sections_[i];
        if (s.hash == first->hash && sameFolded(view(s.name, s.nameEnd), name, encoding_)) {
            bytes_.erase(s.begin, s.end - s.begin);
        }
        if (&s == first) break;
    }
    findSections();
    settleEncoding();
    return true;
}

bool IniText::replaceSection(std::string_view section, const std::vector<Line>& lines) {
    if (!writableSection(section)) return false;
    for (const Line& line : lines) {
        if (!line.second.empty() && writableKey(line.first)) makeRoomFor({section, line.first, line.second});
    }
    std::string text;
    std::vector<std::pair<std::size_t, std::string>> written;  // hash and key: the first of equal keys counts
    for (const Line& line : lines) {
        if (line.second.empty() || !writableKey(line.first)) continue;
        std::string key;
        encoded(line.first, key);
        const std::size_t hash = foldedHash(key, encoding_);
        const auto same = [&](const auto& w) {
            return w.first == hash && sameFolded(w.second, key, encoding_);
        };
        if (std::any_of(written.begin(), written.end(), same)) continue;
        std::string value;
        fromUtf8(onOneLine(line.second), encoding_, value);
        text.append(key).append("=").append(value).append(lineEnd_);
        written.emplace_back(hash, std::move(key));
    }
    if (text.empty()) return eraseSection(section);
    std::string name;
    encoded(section, name);
    if (find(name) == nullptr) {
        closeLastLine();
        bytes_.append("[").append(name).append("]").append(lineEnd_).append(text);
        findSections();
        settleEncoding();
        return true;
    }
    bool changed = eraseRepetitions(name);
    Section* s = find(name);
    // Blank lines in front of the next section stay where they are.
    std::size_t end = trimmedRange(bytes_, s->body, s->end).second;
    const std::size_t newline = end > s->body ? bytes_.find('\n', end) : std::string::npos;
    if (newline != std::string::npos) end = newline + 1;
    const std::string_view old = view(s->body, end);
    const bool cutShort = !old.empty() && old.back() != '\n';
    if (s->body > 0 && bytes_[s->body - 1] != '\n') {  // a header that ends the file
        text.insert(0, lineEnd_);
    } else if (cutShort && text.starts_with(old) && text.size() == old.size() + lineEnd_.size()) {
        return changed;  // all there but for the last line's end
    }
    if (old != text) {
        splice(s->body, end, text);
        if (s->body == 0 || bytes_[s->body - 1] != '\n') findSections();
        changed = true;
    }
    if (changed) settleEncoding();
    return changed;
}

/// Takes out all sections of that name but the first.
bool IniText::eraseRepetitions(std::string_view name) {
    const std::size_t first = find(name)->begin;
    const std::size_t hash = find(name)->hash;
    bool changed = false;
    for (std::size_t i = sections_.size(); i-- > 0 && sections_[i].begin > first;) {
        const Section& other = sections_[i];
        if (other.hash != hash || !sameFolded(view(other.name, other.nameEnd), name, encoding_)) continue;
        bytes_.erase(other.begin, other.end - other.begin);
        changed = true;
    }
    if (changed) findSections();
    return changed;
}

bool IniText::mergeSection(std::string_view section, const std::vector<Line>& lines) {
    if (!writableSection(section)) return false;
    for (const Line& line : lines) {
        if (!line.second.empty() && writableKey(line.first)) makeRoomFor({section, line.first, line.second});
    }
    // In a text of its own, so that a large file is moved once and not for each line.
    std::string name;
    if (!encoded(section, name)) return false;
    const Section* s = find(name);
    IniText part;
    part.bytes_ = s == nullptr ? std::string() : std::string(view(s->begin, s->end));
    part.encoding_ = encoding_;
    part.lineEnd_ = lineEnd_;
    part.findSections();
    bool changed = false;
    for (const Line& line : lines) {
        std::string key;
        std::string value;
        if (!writableKey(line.first) || !encoded(line.first, key)) continue;
        fromUtf8(onOneLine(line.second), encoding_, value);
        changed = part.putEncoded(name, key, value) || changed;
    }
    if (!changed) return false;
    if (s == nullptr) {
        closeLastLine();
        bytes_ += part.bytes_;
    } else {
        bytes_.replace(s->begin, s->end - s->begin, part.bytes_);
    }
    findSections();
    settleEncoding();
    return true;
}

}  // namespace zv
