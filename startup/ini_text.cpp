#include "startup/ini_text.h"

#include <algorithm>
#include <numeric>

namespace zv {
namespace {

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

/// False for an empty name and for one with control characters: a file of random bytes has no sections.
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

/// A name as it is looked for and written.
std::string askedName(std::string_view text) {
    const std::string line = sanitized(onOneLine(text));
    return std::string(trimmedBlanks(line));
}

}  // namespace

std::string_view trimmedBlanks(std::string_view text) {
    const auto [begin, end] = trimmedRange(text, 0, text.size());
    return text.substr(begin, end - begin);
}

void IniText::assign(std::string bytes) {
    bytes_ = isMarkedUtf16(bytes) ? textOf(bytes) : std::move(bytes);
    newLines_ = encodingOf(bytes_);
    for (std::size_t from = 0; newLines_ != Encoding::utf8 && from < bytes_.size();) {
        const std::string_view line = view(from, std::min(bytes_.find('\n', from), bytes_.size() - 1) + 1);
        if (!isAscii(line)) newLines_ = encodingOf(line);
        from += line.size();
    }
    const std::size_t newline = bytes_.find('\n');
    lineEnd_ = newline == std::string::npos || (newline > 0 && bytes_[newline - 1] == '\r') ? "\r\n" : "\n";
    findSections();
}

// ---- finding
// -----------------------------------------------------------------------------------------------

Encoding IniText::lineEncoding(std::string_view line) const {
    return isAscii(line) ? newLines_ : encodingOf(line);
}

/// `text` in `encoding` where that holds it and reads as the same again, else in UTF-8.
std::string IniText::lineBytes(std::string_view text, Encoding encoding) {
    std::string bytes;
    const bool holds = encoding == Encoding::windows1252 && fromUtf8(text, encoding, bytes);
    return holds && (isAscii(bytes) || !validUtf8(bytes)) ? bytes : sanitized(text);
}

bool IniText::isNamed(const Section& section, std::string_view name) const {
    return sameFolded(toUtf8(view(section.name, section.nameEnd), section.encoding), name);
}

bool IniText::isNamed(const Section& section, const Key& key, std::string_view name) const {
    const std::string_view bytes = view(section.begin + key.name, section.begin + key.nameEnd);
    return sameFolded(toUtf8(bytes, key.encoding), name);
}

void IniText::findSections() {
    sections_.clear();
    const std::size_t top = bytes_.starts_with(kUtf8Mark) ? kUtf8Mark.size() : 0;
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
        section.encoding = lineEncoding(view(begin, from));
        section.hash = foldedHash(toUtf8(view(name, nameEnd), section.encoding));
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
                const Encoding encoding = lineEncoding(view(line, next));
                section.keys.push_back({foldedHash(toUtf8(view(name, nameEnd), encoding)), offset(line),
                                        offset(next), offset(name), offset(nameEnd), offset(value),
                                        offset(valueEnd), encoding});
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
    const std::size_t hash = foldedHash(name);
    auto it = std::lower_bound(sectionsByHash_.begin(), sectionsByHash_.end(), hash,
                               [this](std::uint32_t i, std::size_t h) { return sections_[i].hash < h; });
    for (; it != sectionsByHash_.end() && sections_[*it].hash == hash; ++it) {
        const Section& s = sections_[*it];
        if (isNamed(s, name)) return &s;
    }
    return nullptr;
}

IniText::Section* IniText::find(std::string_view name) {
    return const_cast<Section*>(static_cast<const IniText*>(this)->find(name));
}

const IniText::Key* IniText::find(Section& section, std::string_view key) {
    index(section);
    const std::size_t hash = foldedHash(key);
    auto it = std::lower_bound(section.byHash.begin(), section.byHash.end(), hash,
                               [&](std::uint32_t i, std::size_t h) { return section.keys[i].hash < h; });
    for (; it != section.byHash.end() && section.keys[*it].hash == hash; ++it) {
        const Key& k = section.keys[*it];
        if (isNamed(section, k, key)) return &k;
    }
    return nullptr;
}

// ---- reading
// -----------------------------------------------------------------------------------------------

std::string IniText::valueOf(const Section& section, const Key& key) const {
    const std::string_view bytes =
        withoutQuotes(view(section.begin + key.value, section.begin + key.valueEnd));
    std::string text = toUtf8(bytes, key.encoding);
    if (text.size() > kLongestValue) text.resize(firstCharacters(text, kLongestValue).size());
    return text;
}

std::optional<std::string> IniText::value(std::string_view section, std::string_view key) {
    Section* s = find(askedName(section));
    const Key* k = s == nullptr ? nullptr : find(*s, askedName(key));
    return k == nullptr ? std::nullopt : std::optional(valueOf(*s, *k));
}

std::vector<IniText::Line> IniText::lines(std::string_view section) {
    std::vector<Line> out;
    Section* s = find(askedName(section));
    if (s == nullptr) return out;
    index(*s);
    for (const Key& k : s->keys) {
        std::string key = toUtf8(view(s->begin + k.name, s->begin + k.nameEnd), k.encoding);
        if (!askable(key) || find(*s, key) != &k) continue;  // a second one of that name
        out.emplace_back(std::move(key), valueOf(*s, k));
    }
    return out;
}

std::vector<std::string> IniText::sectionNames() const {
    std::vector<std::string> out;
    out.reserve(sections_.size());
    for (const Section& s : sections_) {
        std::string name = toUtf8(view(s.name, s.nameEnd), s.encoding);
        if (askable(name) && find(name) == &s) out.push_back(std::move(name));
    }
    return out;
}

// ---- changing
// ----------------------------------------------------------------------------------------------

void IniText::closeLastLine() {
    if (bytes_.empty() || bytes_.back() == '\n' || bytes_ == kUtf8Mark) return;
    bytes_ += lineEnd_;
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

bool IniText::put(std::string_view section, std::string_view key, std::string_view value) {
    if (!writableSection(section) || !writableKey(key)) return false;
    return putPlain(askedName(section), askedName(key), sanitized(onOneLine(value)));
}

std::optional<std::string> IniText::lineWith(const Section& section, const Key& key,
                                             std::string_view value) const {
    // A plain value takes the place of the old one, the blanks around it stay; one with blanks at its
    // ends takes all there is behind the equals sign.
    std::size_t begin = section.begin + key.value;
    std::size_t end = section.begin + key.valueEnd;
    if (trimmedBlanks(value).size() != value.size()) {
        begin = bytes_.find('=', section.begin + key.nameEnd) + 1;
        end = section.begin + key.end;
        while (end > begin && (bytes_[end - 1] == '\n' || bytes_[end - 1] == '\r')) --end;
    }
    if (toUtf8(view(begin, end), key.encoding) == value) return std::nullopt;
    std::string line = toUtf8(view(section.begin + key.begin, begin), key.encoding);
    line.append(value).append(toUtf8(view(end, section.begin + key.end), key.encoding));
    return lineBytes(line, key.encoding);
}

bool IniText::rewriteValues(std::string_view stem, const Become& become) {
    std::string out;
    std::size_t copied = 0;
    for (Section& s : sections_) {
        const std::string name = toUtf8(view(s.name, s.nameEnd), s.encoding);
        if (!askable(name) || find(name) != &s) continue;
        index(s);
        for (const Key& k : s.keys) {
            if (!view(s.begin + k.name, s.begin + k.nameEnd).starts_with(stem)) continue;
            const std::string key = toUtf8(view(s.begin + k.name, s.begin + k.nameEnd), k.encoding);
            if (!askable(key) || find(s, key) != &k) continue;
            const auto value = become(name, {key, valueOf(s, k)});
            if (!value || value->empty()) continue;
            if (const auto line = lineWith(s, k, sanitized(onOneLine(*value)))) {
                out.append(bytes_, copied, s.begin + k.begin - copied).append(*line);
                copied = s.begin + k.end;
            }
        }
    }
    if (copied == 0) return false;
    out.append(bytes_, copied);
    bytes_ = std::move(out);
    findSections();
    return true;
}

/// put() of names and a value that are valid and on one line.
bool IniText::putPlain(std::string_view section, std::string_view key, std::string_view value) {
    Section* s = find(section);
    const Key* k = s == nullptr ? nullptr : find(*s, key);
    if (k != nullptr && value.empty()) {
        // All lines of that name: a second one would come to light otherwise.
        std::vector<std::pair<std::size_t, std::size_t>> gone;
        for (const Key& line : s->keys) {
            if (isNamed(*s, line, key)) {
                gone.emplace_back(s->begin + line.begin, s->begin + line.end);
            }
        }
        for (auto it = gone.rbegin(); it != gone.rend(); ++it) splice(it->first, it->second, {});
        return true;
    }
    if (value.empty()) return false;
    if (k != nullptr) {
        const auto line = lineWith(*s, *k, value);
        if (line) splice(s->begin + k->begin, s->begin + k->end, *line);
        return line.has_value();
    }
    const std::string line = lineBytes(std::string(key).append("=").append(value), newLines_) + lineEnd_;
    if (s != nullptr) {
        const std::size_t at = s->begin + s->lastLineEnd;
        const bool cutShort = bytes_[at - 1] != '\n';  // the file's last line
        splice(at, at, cutShort ? lineEnd_ + line : line);
        if (cutShort) findSections();
        return true;
    }
    appendHeader(section);
    bytes_ += line;
    findSections();
    return true;
}

void IniText::appendHeader(std::string_view name) {
    closeLastLine();
    bytes_ += lineBytes(std::string("[").append(name).append("]"), newLines_) + lineEnd_;
}

bool IniText::eraseSection(std::string_view section) {
    const std::string name = askedName(section);
    const Section* first = find(name);
    if (first == nullptr) return false;
    bytes_.erase(first->begin, first->end - first->begin);
    findSections();
    return true;
}

bool IniText::replaceSection(std::string_view section, const std::vector<Line>& lines) {
    if (!writableSection(section)) return false;
    const std::string name = askedName(section);
    Section* s = find(name);
    std::string text;
    std::vector<std::pair<std::size_t, std::string>> written;  // hash and key: the first of equal keys counts
    for (const Line& line : lines) {
        if (line.second.empty() || !writableKey(line.first)) continue;
        std::string key = askedName(line.first);
        const std::size_t hash = foldedHash(key);
        const auto same = [&](const auto& w) { return w.first == hash && sameFolded(w.second, key); };
        if (std::any_of(written.begin(), written.end(), same)) continue;
        const Key* old = s == nullptr ? nullptr : find(*s, key);
        text += lineBytes(key + "=" + onOneLine(line.second), old == nullptr ? newLines_ : old->encoding);
        text += lineEnd_;
        written.emplace_back(hash, std::move(key));
    }
    if (text.empty()) return eraseSection(section);
    if (s == nullptr) {
        appendHeader(name);
        bytes_ += text;
        findSections();
        return true;
    }
    // Blank lines in front of the next section stay where they are.
    std::size_t end = s->end;
    while (end > s->body && isBlank(bytes_[end - 1])) --end;
    const std::size_t newline = end > s->body ? bytes_.find('\n', end) : std::string::npos;
    if (newline != std::string::npos) end = newline + 1;
    const std::string_view old = view(s->body, end);
    if (s->body > 0 && bytes_[s->body - 1] != '\n') {  // a header that ends the file
        text.insert(0, lineEnd_);
    } else if (text == std::string(old) + lineEnd_) {
        return false;  // all there but for the last line's end
    }
    if (old == text) return false;
    splice(s->body, end, text);
    if (s->body == 0 || bytes_[s->body - 1] != '\n') findSections();
    return true;
}

bool IniText::mergeSection(std::string_view section, const std::vector<Line>& lines) {
    if (!writableSection(section)) return false;
    // In a text of its own, so that a large file is moved once and not for each line.
    const std::string name = askedName(section);
    const Section* s = find(name);
    IniText part;
    part.bytes_ = s == nullptr ? std::string() : std::string(view(s->begin, s->end));
    part.newLines_ = newLines_;
    part.lineEnd_ = lineEnd_;
    part.findSections();
    bool changed = false;
    for (const Line& line : lines) {
        if (!writableKey(line.first)) continue;
        const std::string value = sanitized(onOneLine(line.second));
        changed = part.putPlain(name, askedName(line.first), value) || changed;
    }
    if (!changed) return false;
    if (s == nullptr) {
        closeLastLine();
        bytes_ += part.bytes_;
    } else {
        bytes_.replace(s->begin, s->end - s->begin, part.bytes_);
    }
    findSections();
    return true;
}

}  // namespace zv
