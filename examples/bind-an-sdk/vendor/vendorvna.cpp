// In place of the real library: an instrument that lives in this file.

#include "vendorvna.h"

#include <array>
#include <condition_variable>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

struct vv_device {
    using Task = std::function<void(bool isClosed)>;

    std::mutex mutex;
    std::condition_variable changed;
    bool isClosed = false;
    std::deque<Task> tasks;
    std::array<unsigned, VV_REGISTERS> registers{};
    vv_handler handler = nullptr;
    void* context = nullptr;

    // The thread's alone.
    std::map<std::string, std::string, std::less<>> files;
    std::uint32_t serial = 4711;

    std::thread thread{[this] { run(); }}; // the last one: it uses all of them

    void run()
    {
        std::unique_lock lock{mutex};
        for (;;) {
            changed.wait(lock, [this] { return isClosed || !tasks.empty(); });
            if (tasks.empty())
                return;
            const auto task = std::move(tasks.front());
            tasks.pop_front();
            const bool wasClosed = isClosed;
            lock.unlock();
            task(wasClosed);
            lock.lock();
        }
    }

    int post(Task task)
    {
        const std::scoped_lock lock{mutex};
        if (isClosed)
            return VV_CLOSED;
        tasks.push_back(std::move(task));
        changed.notify_all();
        return VV_OK;
    }

    void tell(int event, unsigned done = 0, unsigned total = 0)
    {
        std::unique_lock lock{mutex};
        const auto toCall = handler;
        lock.unlock();
        if (toCall)
            toCall(context, event, done, total);
    }
};

namespace {

constexpr std::uint64_t capacity = 65536;

std::uint64_t used(const vv_device& device)
{
    std::uint64_t sum = 0;
    for (const auto& [name, contents] : device.files)
        sum += contents.size();
    return sum;
}

} // namespace

const char* vv_text(int status)
{
    static constexpr std::array texts{"no error",
                                      "there is no such file",
                                      "the file does not fit",
                                      "the name is too long",
                                      "there is no such register",
                                      "the connection is closed"};
    return status >= 0 && static_cast<std::size_t>(status) < texts.size() ? texts[static_cast<std::size_t>(status)]
                                                                          : "unknown status";
}

vv_device* vv_open(const char* address)
{
    return std::string_view{address} == "usb:1" ? new vv_device : nullptr;
}

void vv_close(vv_device* device)
{
    {
        const std::scoped_lock lock{device->mutex};
        device->isClosed = true;
        device->changed.notify_all();
    }
    if (device->thread.joinable())
        device->thread.join();
}

void vv_free(vv_device* device)
{
    delete device;
}

const char* vv_model(vv_device* /*device*/)
{
    return "Pell 101";
}

void vv_listen(vv_device* device, vv_handler handler, void* context)
{
    const std::scoped_lock lock{device->mutex};
    device->context = context;
    device->handler = handler;
}

int vv_list_files(vv_device* device, vv_answer answer, void* context)
{
    return device->post([=](bool isClosed) {
        if (isClosed)
            return answer(context, VV_CLOSED, nullptr, 0);
        std::vector<vv_file> list;
        for (const auto& [name, contents] : device->files) {
            list.push_back({.name = {}, .size = contents.size()});
            name.copy(list.back().name, sizeof(vv_file::name) - 1);
        }
        answer(context, VV_OK, list.data(), list.size() * sizeof(vv_file));
    });
}

int vv_file_space(vv_device* device, vv_answer answer, void* context)
{
    return device->post([=](bool isClosed) {
        const vv_space space{.total = capacity, .used = used(*device)};
        answer(context, isClosed ? VV_CLOSED : VV_OK, &space, sizeof(space));
    });
}

int vv_read_file(vv_device* device, const char* name, vv_answer answer, void* context)
{
    return device->post([=, key = std::string{name}](bool isClosed) {
        const auto file = device->files.find(key);
        if (isClosed || file == device->files.end())
            return answer(context, isClosed ? VV_CLOSED : VV_NO_FILE, nullptr, 0);
        answer(context, VV_OK, file->second.data(), file->second.size());
    });
}

int vv_write_file(vv_device* device, const char* name, const void* data, size_t size, vv_answer answer, void* context)
{
    if (std::strlen(name) >= sizeof(vv_file::name))
        return VV_BAD_NAME;
    return device->post(
        [=, key = std::string{name}, contents = std::string{static_cast<const char*>(data), size}](bool isClosed) {
            const auto file = device->files.find(key);
            const auto before = file == device->files.end() ? 0 : file->second.size();
            if (isClosed || used(*device) - before + size > capacity)
                return answer(context, isClosed ? VV_CLOSED : VV_NO_SPACE, nullptr, 0);
            device->files[key] = contents;
            answer(context, VV_OK, nullptr, 0);
        });
}

int vv_delete_file(vv_device* device, const char* name, vv_answer answer, void* context)
{
    return device->post([=, key = std::string{name}](bool isClosed) {
        if (isClosed)
            return answer(context, VV_CLOSED, nullptr, 0);
        answer(context, device->files.erase(key) == 1 ? VV_OK : VV_NO_FILE, nullptr, 0);
    });
}

int vv_read_serial(vv_device* device, vv_answer answer, void* context)
{
    return device->post(
        [=](bool isClosed) { answer(context, isClosed ? VV_CLOSED : VV_OK, &device->serial, sizeof(device->serial)); });
}

int vv_write_serial(vv_device* device, uint32_t serial, vv_answer answer, void* context)
{
    return device->post([=](bool isClosed) {
        if (isClosed)
            return answer(context, VV_CLOSED, nullptr, 0);
        for (unsigned done = 0; done <= 2; ++done)
            device->tell(VV_EVENT_SERIAL_PROGRESS, done, 2);
        device->serial = serial;
        device->tell(VV_EVENT_GONE);
        device->tell(VV_EVENT_BACK);
        answer(context, VV_OK, nullptr, 0);
    });
}

int vv_get_register(vv_device* device, unsigned number, unsigned* value)
{
    const std::scoped_lock lock{device->mutex};
    if (device->isClosed)
        return VV_CLOSED;
    if (number >= device->registers.size())
        return VV_NO_REGISTER;
    *value = device->registers[number];
    return VV_OK;
}

int vv_set_register(vv_device* device, unsigned number, unsigned value)
{
    const std::scoped_lock lock{device->mutex};
    if (device->isClosed)
        return VV_CLOSED;
    if (number >= device->registers.size())
        return VV_NO_REGISTER;
    device->registers[number] = value;
    return VV_OK;
}
