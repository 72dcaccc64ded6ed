/// The comment block that ogg streams carry in front of each song. [any]
#pragma once

#include <string>
#include <string_view>

namespace zv {

struct SongName {
    std::string artist, title;  ///< as the stream has them; empty where it names none
};

/// Artist and title of `block`: vendor, then fields as "KEY=value", each behind its length in four bytes. What is cut
/// off or damaged yields the fields before it.
SongName ReadVorbisComment(std::string_view block);

}  // namespace zv
