// Files that cannot be opened, written or read to their end: stated results, nothing lost, every file closed.
#include "bvutil/bitmap_ex.h"
#include "bvutil/env.h"
#include "bvutil/filter_host.h"
#include "bvutil/fio.h"
#include "bvutil/gdiplus_services.h"
#include "bvutil/mat_file.h"
#include "bvutil/messages.h"
#include "bvutil/mini.h"
#include "bvutil/text_exchange.h"
#include "module/handles.h"
#include "tests/env/store.h"
#include "tests/imaging/bmp_bytes.h"

#include <thread>

namespace {

unique_file hold(const std::string& path, DWORD access, DWORD sharing, DWORD disposition = OPEN_EXISTING) {
    return unique_file(CreateFileA(path.c_str(), access, sharing, nullptr, disposition, 0, nullptr));
}

// Everything that reads a file, on one that cannot be read, gives its family's failure and keeps what it had.
void expect_unreadable(const std::string& path) {
    SCOPED_TRACE(path);
    const char* const name = path.c_str();
    const Env env;
    env_put(env, "S", "a", "kept");
    Messages messages;
    EXPECT_EQ(env_read_file(name, env), ENV_INVALID);
    EXPECT_EQ(messages.take(), Texts{"cann't open to read: " + path});
    EXPECT_EQ(text_at(env, "S", "a"), "kept");
    EXPECT_EQ(fio_open(nullptr, name, FIO_READ), nullptr);
    int length = 7;
    EXPECT_EQ(jpgToXML(name, nullptr, &length, 1), 0);
    BvUtilImage image = nullptr;
    EXPECT_EQ(gdiPlusGetBitmapFromFile(name, &image), 0);
    char *category, *menu;
    PSFilter_* filter;
    int error = 7;
    EXPECT_EQ(AVGetPSFilterAndInfo(name, &category, &menu, &filter, &error), 0);
    EXPECT_TRUE(!category && !menu && !filter && error == -1);
}

class FileFaults : public testing::Test {
  protected:
    static void SetUpTestSuite() { gdiPlusInit(); }
    TempDir m_dir;
};

TEST_F(FileFaults, WhatCannotBeReadFails) {
    const std::string locked = m_dir.file("locked");
    write_file(locked, "[S]\na=1\n");
    const unique_file holder = hold(locked, GENERIC_READ, 0);
    for (const std::string& path : {locked, m_dir.path(), m_dir.file("none"), m_dir.file("no\\folder")})
        expect_unreadable(path);
    const Env env;
    EXPECT_EQ(env_read_file("NUL", env), ENV_OK) << "a device that has an end";
}

TEST_F(FileFaults, WhatCannotBeWrittenStaysAsItWas) {
    const std::string locked = m_dir.file("locked.mat"),
                      text = "[Material]\r\nName=m\r\n[m]\r\nkdiffus=1\r\n";
    write_file(locked, text);
    const unique_file holder = hold(locked, GENERIC_READ, FILE_SHARE_READ);
    const Env env;
    env_put(env, "S", "a", "1");
    CBitmapEx* bitmap = nullptr;
    bmpExInit(&bitmap);
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(bmp_file({2, 2}, counting(16)).c_str()));
    // The last lies in a folder of this system that nobody may write to.
    for (const std::string& path :
         {locked, m_dir.path(), m_dir.file("no\\folder"), std::string("Z:\\proc\\new")}) {
        SCOPED_TRACE(path);
        const char* const name = path.c_str();
        Messages messages;
        env_write_file(name, env);
        EXPECT_EQ(messages.take(), Texts{"cann't open to write:"});
        for (const int mode : {FIO_WRITE + 0, FIO_APPEND + 0, FIO_READ | FIO_UPDATE})
            EXPECT_EQ(fio_open(nullptr, name, mode), nullptr);
        EXPECT_EQ(bmpExSaveToFile(bitmap, name), 1);
        EXPECT_EQ(CBvMatFile().Write(path), 0);
        if (MiniHandle h = mini_open_ex(name, 0)) {
            EXPECT_EQ(mini_write_string(h, "m", "kdiffus", "2"), -1);
            mini_close(&h);
        }
    }
    EXPECT_EQ(read_file(locked), text);
}

// A device of this system that is always full.
TEST_F(FileFaults, AFullDiskIsToldWhereTheInterfaceCan) {
    const std::string full = "Z:\\dev\\full";
    if (!hold(full, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE)) GTEST_SKIP() << "there is none";
    FioFile* h = fio_open(nullptr, full.c_str(), FIO_WRITE | FIO_HEADER);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(fio_flush(h), -1);
    EXPECT_EQ(fio_putstring(h, "x", 100000), -1);
    fio_putchar(h, 'x');
    EXPECT_EQ(fio_close(h), -1);

    const Env env;
    env_put(env, "S", "a", "1");
    env_write_file(full.c_str(), env); // has no result
    BvUtilImage image = nullptr;
    std::string bits = counting(8 * 8 * 4);
    ASSERT_EQ(gdiPlusGetBitmap(8, 8, 32, 2, reinterpret_cast<BYTE*>(bits.data()), &image), 1);
    EXPECT_EQ(gdiPlusSaveImage(image, full.c_str(), 0), 1);
    gdiPlusFreeImage(image);
    CBitmapEx* bitmap = nullptr;
    bmpExInit(&bitmap);
    bmpExLoadFromBits(bitmap, reinterpret_cast<const BYTE*>(bmp_file({2, 2}, counting(16)).c_str()));
    EXPECT_EQ(bmpExSaveToFile(bitmap, full.c_str()), 1);
}

TEST_F(FileFaults, AFileMayShrinkWhileItIsRead) {
    const std::string path = m_dir.file("data");
    write_file(path, "1.1  @mbMOTOROLA" + std::string(20000, 'x'));
    FioFile* h = fio_open(nullptr, path.c_str(), FIO_READ | FIO_HEADER);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(h->byteOrder, FIO_MOTOROLA);
    hold(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, TRUNCATE_EXISTING);
    EXPECT_EQ(fio_seek(h, 0, 0), 0);
    EXPECT_EQ(fio_getchar(h, nullptr), -1);
    std::string line(100, '\0');
    EXPECT_EQ(fio_getstring(h, 50, line.data()), -1);
    EXPECT_EQ(fio_close(h), 0);

    // Lengths that change all the time; each result is one of a file's states, or a failure.
    std::atomic<bool> stop = false;
    std::thread changer([&] {
        while (!stop)
            for (const std::size_t size : {300000u, 0u, 700000u})
                write_file(path, "[S]\na=" + std::string(size, 'x'));
    });
    std::string text(1000000, '\0');
    for (int i = 0; i < 200; ++i) {
        int length = -1;
        const int told = jpgToXML(path.c_str(), nullptr, &length, 1);
        EXPECT_TRUE(told ? length >= 0 && length <= 933344 : length == -1) << length;
        jpgToXML(path.c_str(), text.data(), nullptr, 0);
        const Env env;
        env_read_file(path.c_str(), env);
    }
    stop = true;
    changer.join();
    Messages().take();
    EXPECT_TRUE(DeleteFileA(path.c_str()));
}

// Positions are counted in 32 bits: files beyond are refused where one is told, and readable from the front.
TEST_F(FileFaults, FilesBeyondFourGigabytes) {
    const std::string path = m_dir.file("huge.bmp");
    write_file(path, bmp_file({2, 2}, counting(16)));
    {
        const unique_file file = hold(path, GENERIC_WRITE, 0);
        LARGE_INTEGER end;
        end.QuadPart = 5LL << 30;
        if (!SetFilePointerEx(file.get(), end, nullptr, FILE_BEGIN) || !SetEndOfFile(file.get()))
            GTEST_SKIP() << "the file system has no such files";
    }
    int length = 7;
    EXPECT_EQ(jpgToXML(path.c_str(), nullptr, &length, 1), 0);
    EXPECT_EQ(length, 7);
    FioFile* h = fio_open(nullptr, path.c_str(), FIO_READ);
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(fio_getchar(h, nullptr), 'B');
    EXPECT_TRUE(fio_seek(h, 0, 2) == -1 || fio_tell(h) == -1);
    EXPECT_EQ(fio_seek(h, 1, 0), 0);
    EXPECT_EQ(fio_getchar(h, nullptr), 'M');
    EXPECT_EQ(fio_close(h), 0);
    CBitmapEx* bitmap = nullptr;
    HBITMAP made = nullptr;
    bmpExInit(&bitmap);
    EXPECT_EQ(bmpExLoad(bitmap, path.c_str()), 1);
    EXPECT_EQ(bmpExSave(bitmap, &made), 1);
    EXPECT_NE(made, nullptr);
    DeleteObject(made);
}

} // namespace
