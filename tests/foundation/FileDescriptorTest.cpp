// The owner of a descriptor closes it once, and only while it has it.
#include "ov_sys/Interface/foundation/FileDescriptor.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <type_traits>

namespace Orvane {
namespace {

int openNothing() {
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
}

bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) >= 0;
}

TEST(FileDescriptor, WithoutADescriptorIsFalseAndMinusOne) {
    const FileDescriptor none;
    const FileDescriptor failed(-5);
    EXPECT_FALSE(none);
    EXPECT_EQ(none.get(), -1);
    EXPECT_FALSE(failed);
    EXPECT_EQ(failed.get(), -1);
}

TEST(FileDescriptor, ClosesWhatItHasWhenItGoes) {
    const int fd = openNothing();
    {
        const FileDescriptor owner(fd);
        EXPECT_TRUE(owner);
        EXPECT_EQ(owner.get(), fd);
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptor, OwnsDescriptorZero) {
    const FileDescriptor source(openNothing());
    EXPECT_TRUE(FileDescriptor(dup2(source.get(), 0)));
    EXPECT_FALSE(isOpen(0));
    FileDescriptor owner;
    owner.reset(dup2(source.get(), 0));
    EXPECT_TRUE(owner);
}

TEST(FileDescriptor, ReleasedLeavesTheDescriptorOpen) {
    int fd = -1;
    {
        FileDescriptor owner(openNothing());
        fd = owner.release();
        EXPECT_FALSE(owner);
    }
    EXPECT_TRUE(isOpen(fd));
    close(fd);
}

TEST(FileDescriptor, ResetClosesTheFormerAndTakesTheNew) {
    const int former = openNothing();
    const int next = openNothing();
    FileDescriptor owner(former);
    owner.reset(next);
    EXPECT_FALSE(isOpen(former));
    EXPECT_EQ(owner.get(), next);
    owner.reset();
    EXPECT_FALSE(isOpen(next));
    EXPECT_FALSE(owner);
}

TEST(FileDescriptor, MovedFromHasNothingAndTheTargetsFormerIsClosed) {
    const int first = openNothing();
    const int second = openNothing();
    FileDescriptor source(first);
    FileDescriptor target(second);
    target = std::move(source);
    EXPECT_FALSE(isOpen(second));
    EXPECT_EQ(target.get(), first);
    EXPECT_FALSE(source); // NOLINT(bugprone-use-after-move): that is what is tested
    const FileDescriptor last(std::move(target));
    EXPECT_EQ(last.get(), first);
    EXPECT_TRUE(isOpen(first));
}

TEST(FileDescriptor, AssignedToItselfKeepsItsDescriptor) {
    const int fd = openNothing();
    FileDescriptor owner(fd);
    FileDescriptor& same = owner;
    owner = std::move(same);
    EXPECT_EQ(owner.get(), fd);
    EXPECT_TRUE(isOpen(fd));
}

static_assert(!std::is_copy_constructible_v<FileDescriptor> && !std::is_copy_assignable_v<FileDescriptor>);

} // namespace
} // namespace Orvane
