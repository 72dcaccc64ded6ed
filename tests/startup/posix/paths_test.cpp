// What names may hold here and nowhere else: links, permissions, backslashes, letters of either case.
#include "tests/startup/surroundings.h"

namespace zv::test {
namespace {

class PosixPaths : public ProgramFolderTest {};

TEST_F(PosixPaths, RewritingKeepsLinksAndPermissions) {
    cImpulse store;
    store.SetIniPath(text("test.ini"));
    write("real.ini", "[S]\nk=v\n");
    fs::permissions(path("real.ini"), fs::perms(0640));
    fs::create_symlink("real.ini", path("test.ini"));
    store.PutValue("k", "w", "S");
    EXPECT_TRUE(fs::is_symlink(path("test.ini")));
    EXPECT_EQ(read("real.ini"), "[S]\nk=w\n");
    EXPECT_EQ(fs::status(path("real.ini")).permissions(), fs::perms(0640));
}

}  // namespace
}  // namespace zv::test
