// The database of ROIs and the file it writes; the reader against extraction from a standard stream.
#include "../../support/comma_locale.h"
#include "../../support/temp_folder.h"
#include "ORV_roidb.h"
#include "roi_reader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <grp.h>
#include <random>
#include <sstream>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

const std::string three_rois = "embryo\n10 20 3 5 0123\n4 999 0 6 2301\n5 0 0 6 22\n";

// More than a file is read and written at a time.
roidb large()
{
    roidb db("large");
    for (int i = 0; i < 30'000; ++i)
        db.entry({i % 999, i % 31, i % 7, i / 100, std::string(static_cast<std::size_t>(i % 90 + 1), '3')});
    return db;
}

TEST(roidb, writes_back_what_it_read_into_the_same_file)
{
    const temp_folder folder;
    const std::string old = folder.with("old.roi", three_rois);
    fs::permissions(old, fs::perms(0640));
    fs::create_symlink("old.roi", folder.path("link.roi"));
    roidb db(""), again("");
    EXPECT_TRUE(db.read(old) && large().write(folder.path("link.roi")) && again.read(old));
    EXPECT_TRUE(again.db == large().db && again.name() == "large");
    EXPECT_TRUE(db.write(folder.path("link.roi")));
    EXPECT_EQ(folder.contents("old.roi"), three_rois);
    EXPECT_TRUE(fs::is_symlink(folder.path("link.roi")));
    EXPECT_EQ(fs::status(old).permissions(), fs::perms(0640));
    EXPECT_EQ(folder.files(), 2) << "nothing is left behind";
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out << roi(-1, 2, 3, 4, "01") << ' ' << pos3d(0.5, 1.0 / 3, -1);
    EXPECT_EQ(out.str(), "-1 2 3 4 01 0.5 0.333333 -1");

    fs::create_symlink("../" + fs::path(folder.path("")).parent_path().filename().string() + "/new.roi",
                       folder.path("dangling.roi"));
    const mode_t mask = ::umask(027);
    EXPECT_TRUE(db.write(folder.path("dangling.roi")) && fs::is_symlink(folder.path("dangling.roi")));
    ::umask(mask);
    EXPECT_EQ(folder.contents("new.roi"), three_rois) << "written through the link";
    EXPECT_EQ(fs::status(folder.path("new.roi")).permissions(), fs::perms(0640));

    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::fstream held(pipe);    // a reader
    EXPECT_TRUE(db.write(pipe) && fs::is_fifo(pipe)) << "what is no regular file is not replaced";
}

// As on a full disk; 0 for no limit.
void limit_file_size(rlim_t bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    struct rlimit limit {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes != 0 ? bytes : limit.rlim_max;
    ::setrlimit(RLIMIT_FSIZE, &limit);
}

TEST(roidb, a_failed_write_says_so_and_leaves_the_old_file_whole)
{
    const temp_folder folder;
    const std::string old = folder.with("old.roi", three_rois);
    fs::create_directory(folder.path("folder"));
    const std::string protected_file = folder.path("folder/a.roi");
    fs::copy_file(old, protected_file);
    fs::permissions(folder.path("folder"), fs::perms(0555));
    fs::permissions(folder.path(""), fs::perms(0755));
    fs::create_symlink("circle", folder.path("circle"));
    const std::pair<std::string, const char*> cases[] = {
        {folder.path("none/a.roi"), nullptr},
        {folder.path("folder"), nullptr},
        {folder.path("circle"), nullptr},
        {"/dev/full", "No space left on device"},
        {old, "File too large"},
        {protected_file, nullptr},
    };
    for (const auto& [target, reason] : cases) {
        testing::internal::CaptureStderr();
        limit_file_size(4096);
        const uid_t user = ::geteuid();
        (void)!::seteuid(target == protected_file ? 65534 : user);    // root may write anywhere
        EXPECT_FALSE(large().write(target)) << target;
        (void)!::seteuid(user);
        limit_file_size(0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "roidb: Cannot open " + target + "\n" + (reason ? target + ": " + reason + "\n" : ""));
        EXPECT_EQ(folder.contents("old.roi"), three_rois);
        EXPECT_EQ(folder.contents("folder/a.roi"), three_rois);
        EXPECT_EQ(folder.files(), 3) << target << ": nothing is left behind";
    }
    fs::permissions(folder.path("folder"), fs::perms(0755));    // so that it can be removed
}

// True iff `act` says so in a process of a user that is in two groups.
template <class Act>
bool as_user(const Act& act)
{
    const pid_t process = ::fork();
    if (process == 0) {
        const gid_t groups[] = {65534, 5000};
        const bool is_user = ::setgroups(2, groups) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0;
        ::_exit(is_user && act() ? 0 : 1);
    }
    int status = 1;
    ::waitpid(process, &status, 0);
    return status == 0;
}

TEST(roidb, a_new_file_belongs_to_the_group_of_the_old_one_or_gives_it_no_more_rights)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "only root can be somebody else";
    const struct {
        uid_t owner;
        gid_t group;
        mode_t mode;
        gid_t new_group;
        mode_t new_mode;
    } cases[] = {{1234, 5000, 0664, 5000, 0664},
                 {65534, 4242, 0664, 65534, 0644},
                 {65534, 4242, 0660, 65534, 0600},
                 {65534, 4242, 02606, 65534, 0606}};
    for (const auto& c : cases) {
        const temp_folder folder;
        const std::string file = folder.with("a.roi", three_rois);
        ASSERT_TRUE(::chown(file.c_str(), c.owner, c.group) == 0 && ::chmod(file.c_str(), c.mode) == 0);
        fs::permissions(folder.path(""), fs::perms(0777));
        EXPECT_TRUE(as_user([&] { return large().write(file); }));
        struct stat now {};
        ::stat(file.c_str(), &now);
        EXPECT_EQ(std::pair(now.st_gid, now.st_mode & 07777), std::pair(c.new_group, c.new_mode));
    }
}

std::string uncuttable;    // a file that ftruncate() fails on

TEST(roidb, writes_in_place_where_nothing_can_be_put_beside_and_keeps_a_copy_meanwhile)
{
    if (::geteuid() != 0)
        GTEST_SKIP() << "root may put files anywhere";
    const struct {
        int rights_of_folder, rights_of_state;
        bool fails, is_written;
        long copies;
    } cases[] = {{0555, 0777, false, true, 0},
                 {01777, 0777, false, true, 0},    // sticky: only the owner may replace a file
                 {0555, 0777, true, true, 1},
                 {0555, 0555, false, false, 0}};    // no copy could be kept
    for (const auto& c : cases) {
        const temp_folder folder, state;
        const std::string file = folder.with("a.roi", three_rois);
        fs::permissions(file, fs::perms(0666));
        fs::permissions(folder.path(""), fs::perms(c.rights_of_folder));
        fs::permissions(state.path(""), fs::perms(c.rights_of_state));
        ::setenv("XDG_STATE_HOME", state.path("").c_str(), 1);
        uncuttable = c.fails ? file : "";
        testing::internal::CaptureStderr();
        EXPECT_EQ(as_user([&] { return large().write(file); }), c.is_written && !c.fails);
        const std::string said = testing::internal::GetCapturedStderr();
        EXPECT_EQ(folder.contents("a.roi") != three_rois, c.is_written);
        EXPECT_EQ(folder.files(), 1);
        EXPECT_EQ(fs::status(file).permissions(), fs::perms(0666));
        const auto copies = fs::exists(state.path("orvbrowser"))
                                ? fs::recursive_directory_iterator(state.path("orvbrowser"))
                                : fs::recursive_directory_iterator();
        EXPECT_EQ(std::distance(begin(copies), end(copies)), c.copies);
        const std::string named = said.substr(0, said.find(": "));
        EXPECT_EQ(c.copies > 0 ? state.contents(named.substr(state.path("").size())) : three_rois, three_rois)
            << said;
    }
    ::unsetenv("XDG_STATE_HOME");
}

TEST(roidb, does_not_write_what_it_could_not_read_back)
{
    const temp_folder folder;
    const std::string file = folder.with("a.roi", three_rois);
    for (const std::string bad : {"", " ", "two words", "line\nend", "\v", "tab\t"}) {
        roidb nameless(bad), unreadable("n");
        unreadable.entry({1, 2, 3, 4, bad});
        for (const roidb* db : {&nameless, &unreadable}) {
            testing::internal::CaptureStderr();
            EXPECT_FALSE(db->write(file)) << bad;
            EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("roidb: Not saved in " + file));
            EXPECT_EQ(folder.contents("a.roi"), three_rois);
        }
    }
}

TEST(roidb, the_old_file_or_the_new_one_is_there_whenever_the_writer_is_killed)
{
    const temp_folder folder;
    const roidb db = large();
    ASSERT_TRUE(db.write(folder.path("new.roi")));
    std::mt19937 random(1);
    for (int i = 0; i < 50; ++i) {
        const std::string file = folder.with("a.roi", three_rois);
        const pid_t writer = ::fork();
        if (writer == 0)
            ::_exit(db.write(file) ? 0 : 1);
        ::usleep(static_cast<useconds_t>(random() % 15'000));
        ::kill(writer, SIGKILL);
        ::waitpid(writer, nullptr, 0);
        const std::string found = folder.contents("a.roi");
        EXPECT_TRUE(found == three_rois || found == folder.contents("new.roi")) << found.size() << " bytes";
    }
}

using read_rois = std::pair<std::string, std::vector<roi>>;

read_rois stream_read(const std::string& text)
{
    read_rois all("before", {});
    std::istringstream file(text);
    file.imbue(std::locale::classic());
    file >> all.first;
    int x = 0, y = 0, z = 0, t = 0;
    for (std::string outline; file >> x >> y >> z >> t >> outline;)
        all.second.emplace_back(x, y, z, t, outline);
    return all;
}

void expect_same_as_stream(const std::string& text)
{
    static const temp_folder folder;
    read_rois all("before", {});
    const auto enter = [&all](roi r) { all.second.push_back(std::move(r)); };
    ASSERT_TRUE(read_roi_file(folder.with("a.roi", text), all.first, enter));
    ASSERT_EQ(all, stream_read(text)) << text.substr(0, 200);
}

TEST(roi_reader, accepts_what_a_stream_accepts)
{
    const std::string texts[] = {"name\n1 2 3 4 0123\n5 6 7 8 32\n",
                                 "\v\f n \r\n 1\t+2\n-3 \v0004 01\f5 6\n7\n\n8\r\n9",
                                 " 1-2+3 4 01 5 6 7 8 2301",
                                 " 2147483647 -2147483648 +0 -0 3 2147483648 0 0 0 1 5 6 7 8 2",
                                 " 0 0 0 -2147483649 1 5 6 7 8 2\n99999999999999999999999999 0 0",
                                 " 0 99999999999999999999999999 0 0 1 5 6 7 8 2",
                                 " 1 2 3 +-4 01 5 6 7 8 1",
                                 " 1 2 3 0x10 01 5 6.7 8 1",
                                 " 1 2 3 4 \xff\xa0\x85 1 2 3 4 \xe9t\xe9",
                                 "\xef\xbb\xbfn 1 2 3 4 0",
                                 std::string(" 1 2 3 4 0\0 1 2\0", 16)};
    for (const std::string& text : texts)
        for (std::size_t length = 0; length <= text.size(); ++length)    // cut at every byte
            expect_same_as_stream((text[0] == ' ' ? "n" : "") + text.substr(0, length));
}

TEST(roi_reader, reads_files_longer_than_what_it_holds_in_memory)
{
    std::mt19937 random(11);
    std::string text = "n 1 2 3 4 " + std::string(700'000, '2');
    while (text.size() < 2'000'000) {
        for (int field = 0; field < 4; ++field)
            text += std::string(1 + random() % 5, " \n\t"[random() % 3]) +
                    std::to_string(static_cast<int>(random()));
        text += ' ' + std::string(1 + random() % 90, '3');
    }
    expect_same_as_stream(text);
}

}    // namespace

// As on a disk that fails.
extern "C" int ftruncate(int fd, off_t size) noexcept
{
    struct stat here {
    }, there{};
    const bool is_it =
        ::fstat(fd, &here) == 0 && ::stat(uncuttable.c_str(), &there) == 0 && here.st_ino == there.st_ino;
    errno = EIO;
    return is_it ? -1 : static_cast<int>(::syscall(SYS_ftruncate, fd, size));
}
