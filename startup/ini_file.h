/// One INI file on disk with its text in memory. The text is what the file holds at each call: a change made
/// by someone else is seen, and every change goes through to the file before the call returns. [control]
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <vector>

#include "platform/files.h"
#include "startup/ini_text.h"

namespace zv {

class StoredIni {
  public:
    explicit StoredIni(std::filesystem::path path) : path_(std::move(path)) {}

    /// The one object for a file; several stores on a file share it.
    static std::shared_ptr<StoredIni> at(std::string_view path);

    /// The text as the file has it now; empty when it cannot be read.
    IniText& text();

    /// Changes the text by `change(text)`, which says whether it changed a byte, and rewrites the file if so.
    /// False when the file cannot be read or written; it is then as it was.
    template <class Change>
    bool update(Change change) {
        refresh();
        if (!usable_) return false;
        try {
            if (!change(text_)) return true;
        } catch (...) {
            forget();
            throw;
        }
        return write();
    }

    /// See cImpulse::KeepWhenAway.
    void keepWhenAway() { keepWhenAway_ = true; }
    bool away() const { return away_; }

  private:
    void refresh();
    void forget();
    bool write();

    std::filesystem::path path_;
    IniText text_;
    FileState known_;
    bool loaded_ = false;
    bool keepWhenAway_ = false;
    bool away_ = false;
    bool had_ = false;      ///< the file held something when it was last read or written
    bool settled_ = false;  ///< another change could not hide in the same tick of the file clock
    bool usable_ = false;   ///< missing or read; false for what is there but cannot be read
};

}  // namespace zv
