// The load: WebSocket clients on one epoll loop, with frames made by hand so that the server is what is measured.
// Prints one JSON object.

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char *what)
{
    std::perror(what);
    std::exit(EXIT_FAILURE);
}

double Seconds(Clock::duration duration)
{
    return std::chrono::duration<double>(duration).count();
}

/// A text frame as a client must send it: masked.
std::string TextFrame(std::string_view text)
{
    static const unsigned char mask[4] = {0x9d, 0x31, 0xc5, 0x72};
    std::string frame = "\x81";
    if (text.size() < 126) {
        frame += static_cast<char>(0x80 | text.size());
    } else {
        frame += static_cast<char>(0x80 | 126);
        frame += static_cast<char>(text.size() >> 8);
        frame += static_cast<char>(text.size() & 0xff);
    }
    frame.append(reinterpret_cast<const char *>(mask), sizeof mask);
    for (std::size_t i = 0; i < text.size(); ++i)
        frame += static_cast<char>(static_cast<unsigned char>(text[i]) ^ mask[i % 4]);
    return frame;
}

/// Counts the messages in a stream of server frames without copying their payload.
class MessageCounter
{
public:
    /// Returns how many messages end in this piece of the stream; visit(data, size) sees their payload.
    template <class Visit>
    int Feed(const char *data, std::size_t size, Visit visit)
    {
        int messages = 0;
        while (size > 0) {
            if (m_payloadLeft == 0 && !m_inPayload) {
                m_header[m_headerSize++] = static_cast<unsigned char>(*data++);
                --size;
                if (!ReadHeader())
                    continue;
            }
            const std::size_t taken = std::min<std::uint64_t>(size, m_payloadLeft);
            visit(data, taken);
            data += taken;
            size -= taken;
            m_payloadLeft -= taken;
            if (m_payloadLeft == 0) {
                m_inPayload = false;
                messages += m_final;
            }
        }
        return messages;
    }

private:
    bool ReadHeader()
    {
        if (m_headerSize < 2)
            return false;
        const unsigned shortLength = m_header[1] & 0x7f;
        const std::size_t lengthBytes = shortLength == 126 ? 2 : shortLength == 127 ? 8 : 0;
        if (m_headerSize < 2 + lengthBytes)
            return false;
        m_payloadLeft = lengthBytes ? 0 : shortLength;
        for (std::size_t i = 0; i < lengthBytes; ++i)
            m_payloadLeft = m_payloadLeft << 8 | m_header[2 + i];
        m_final = m_header[0] >> 7;
        m_headerSize = 0;
        m_inPayload = true;
        return true;
    }

    std::array<unsigned char, 10> m_header{};
    std::size_t m_headerSize = 0;
    std::uint64_t m_payloadLeft = 0;
    int m_final = 0;
    bool m_inPayload = false;
};

/// One client: its socket, what is still to be sent, and the messages that came.
struct Client {
    int fd = -1;
    MessageCounter counter;
    Clock::time_point sentAt;
    int messages = 0; ///< since the last request
};

class Load
{
public:
    Load(std::uint16_t port, int clients)
        : m_epoll(epoll_create1(0)), m_buffer(1 << 20), m_clients(static_cast<std::size_t>(clients))
    {
        for (std::size_t i = 0; i < m_clients.size(); ++i) {
            m_clients[i].fd = Connect(port);
            epoll_event event{};
            event.events = EPOLLIN;
            event.data.u64 = i;
            epoll_ctl(m_epoll, EPOLL_CTL_ADD, m_clients[i].fd, &event);
        }
    }
    ~Load()
    {
        for (const Client &client : m_clients)
            close(client.fd);
        close(m_epoll);
    }
    Load(const Load &) = delete;
    Load &operator=(const Load &) = delete;

    std::vector<Client> &Clients() { return m_clients; }
    std::uint64_t Bytes() const { return m_bytes; }

    static void Send(Client &client, const std::string &bytes)
    {
        client.messages = 0;
        client.sentAt = Clock::now();
        if (send(client.fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size()))
            Fail("send");
    }

    /// Sends as much as the socket takes; returns how much that was.
    static std::size_t SendSome(const Client &client, std::string_view bytes)
    {
        const ssize_t sent = send(client.fd, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno != EAGAIN)
            Fail("send");
        return static_cast<std::size_t>(std::max<ssize_t>(sent, 0));
    }

    /// Waits for data and calls arrived(client, messages) for each client that got some whole messages.
    template <class Arrived, class Visit>
    void Receive(int timeoutMs, Arrived arrived, Visit visit)
    {
        std::array<epoll_event, 64> events;
        const int count = epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), timeoutMs);
        for (int i = 0; i < count; ++i) {
            Client &client = m_clients[events[static_cast<std::size_t>(i)].data.u64];
            const ssize_t got = recv(client.fd, m_buffer.data(), m_buffer.size(), MSG_DONTWAIT);
            if (got == 0 || (got < 0 && errno != EAGAIN))
                Fail("the server hung up");
            if (got < 0)
                continue;
            m_bytes += static_cast<std::uint64_t>(got);
            if (const int messages = client.counter.Feed(m_buffer.data(), static_cast<std::size_t>(got), visit)) {
                client.messages += messages;
                arrived(client, messages);
            }
        }
        if (count == 0 && timeoutMs > 0) {
            std::fprintf(stderr, "no reply within %d ms\n", timeoutMs);
            std::exit(EXIT_FAILURE);
        }
    }

    template <class Arrived>
    void Receive(int timeoutMs, Arrived arrived)
    {
        Receive(timeoutMs, arrived, [](const char *, std::size_t) {});
    }

    /// Sends one request and waits for its reply.
    void Ask(Client &client, const std::string &frame)
    {
        Send(client, frame);
        while (client.messages == 0)
            Receive(patienceMs, [](Client &, int) {});
    }

    static constexpr int patienceMs = 60000;

private:
    static int Connect(std::uint16_t port)
    {
        const int fd = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (connect(fd, reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0)
            Fail("connect");
        const int on = 1;
        setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        const std::string host = "localhost:" + std::to_string(port);
        const std::string request =
            "GET / HTTP/1.1\r\nHost: " + host
            + "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ=="
              "\r\nSec-WebSocket-Version: 13\r\nOrigin: http://"
            + host + "\r\n\r\n";
        if (send(fd, request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size()))
            Fail("send");
        std::string reply;
        for (char c = 0; reply.find("\r\n\r\n") == std::string::npos; reply += c) {
            if (recv(fd, &c, 1, 0) != 1)
                Fail("handshake");
        }
        if (reply.find(" 101 ") == std::string::npos) {
            std::fprintf(stderr, "refused: %s\n", reply.c_str());
            std::exit(EXIT_FAILURE);
        }
        return fd;
    }

    int m_epoll;
    std::vector<char> m_buffer;
    std::vector<Client> m_clients;
    std::uint64_t m_bytes = 0;
};

/// Processor time that a process has had, over all its threads.
Clock::duration ProcessorTime(int pid)
{
    std::chrono::nanoseconds sum{0};
    std::error_code error;
    for (const auto &task : std::filesystem::directory_iterator("/proc/" + std::to_string(pid) + "/task", error)) {
        std::ifstream file(task.path() / "schedstat");
        std::uint64_t nanoseconds = 0;
        file >> nanoseconds;
        sum += std::chrono::nanoseconds(nanoseconds);
    }
    return sum;
}

struct Options {
    std::string mode;
    std::uint16_t port = 0;
    int serverPid = 0;
    int clients = 1;
    double seconds = 1;
    int count = 0; ///< of requests (pipeline: in flight; push: rounds); 0 = until the time is over
    std::vector<std::string> setup;
    std::string request;
};

/// What a run measured.
class Report
{
public:
    Report(const Load &load, const Options &options)
        : m_load(load), m_serverPid(options.serverPid), m_bytesBefore(load.Bytes()),
          m_serverBefore(ProcessorTime(options.serverPid)), m_start(Clock::now())
    {
    }

    void Add(Clock::duration latency) { m_latencies.push_back(Seconds(latency) * 1e6); }
    void Count(std::uint64_t messages) { m_messages += messages; }
    std::uint64_t Messages() const { return m_messages; }
    double Elapsed() const { return Seconds(Clock::now() - m_start); }

    void Print()
    {
        const double seconds = Elapsed();
        const double server = Seconds(ProcessorTime(m_serverPid) - m_serverBefore);
        const double own = Seconds(ProcessorTime(getpid()));
        const double messages = static_cast<double>(m_messages);
        const double bytes = static_cast<double>(m_load.Bytes() - m_bytesBefore);
        std::sort(m_latencies.begin(), m_latencies.end());
        // Rates in a second, latencies and the server's processor time for a message in microseconds, the client's
        // own processor time as a share of the run.
        std::printf("{\"messages\":%.0f,\"rate\":%.1f,\"megabytes\":%.3f,\"p50\":%.1f,\"p99\":%.1f,\"p999\":%.1f,"
                    "\"max\":%.1f,\"serverCost\":%.3f,\"clientLoad\":%.3f}\n",
                    messages, messages / seconds, bytes / seconds / 1e6, Percentile(0.5), Percentile(0.99),
                    Percentile(0.999), Percentile(1), server / messages * 1e6, own / seconds);
    }

private:
    /// Nearest rank, in microseconds.
    double Percentile(double share) const
    {
        if (m_latencies.empty())
            return 0;
        const double rank = share * static_cast<double>(m_latencies.size() - 1);
        return m_latencies[static_cast<std::size_t>(rank + 0.5)];
    }

    const Load &m_load;
    int m_serverPid;
    std::uint64_t m_bytesBefore;
    Clock::duration m_serverBefore;
    Clock::time_point m_start;
    std::vector<double> m_latencies;
    std::uint64_t m_messages = 0;
};

/// Every client has one request on its way at any time.
void PingPong(Load &load, const Options &options)
{
    const std::string frame = TextFrame(options.request);
    Report report(load, options);
    for (Client &client : load.Clients())
        Load::Send(client, frame);
    int waiting = static_cast<int>(load.Clients().size());
    while (waiting > 0) {
        load.Receive(Load::patienceMs, [&](Client &client, int messages) {
            report.Add(Clock::now() - client.sentAt);
            report.Count(static_cast<std::uint64_t>(messages));
            const bool bOver = options.count ? report.Messages() >= static_cast<std::uint64_t>(options.count)
                                             : report.Elapsed() >= options.seconds;
            if (bOver)
                --waiting;
            else
                Load::Send(client, frame);
        });
    }
    report.Print();
}

/// One client sends all its requests without waiting for replies, round after round.
void Pipeline(Load &load, const Options &options)
{
    Client &client = load.Clients().front();
    const std::string frame = TextFrame(options.request);
    std::string all;
    for (int i = 0; i < options.count; ++i)
        all += frame;
    Report report(load, options);
    while (report.Elapsed() < options.seconds) {
        const Clock::time_point start = Clock::now();
        client.messages = 0;
        std::size_t sent = 0;
        while (client.messages < options.count) {
            const bool bAllSent = sent == all.size();
            if (!bAllSent)
                sent += Load::SendSome(client, std::string_view(all).substr(sent, 1 << 16));
            load.Receive(bAllSent ? Load::patienceMs : 0, [](Client &, int) {});
        }
        report.Count(static_cast<std::uint64_t>(options.count));
        report.Add(Clock::now() - start);
    }
    report.Print();
}

/// The first client sends the request, which is answered and then makes the server push to all; a round ends when
/// the last client has its push.
void Push(Load &load, const Options &options)
{
    Client &trigger = load.Clients().front();
    const std::string frame = TextFrame(options.request);
    Report report(load, options);
    for (int round = 0; round < options.count; ++round) {
        for (Client &client : load.Clients())
            client.messages = 0;
        Load::Send(trigger, frame);
        const int expected = static_cast<int>(load.Clients().size()) + 1;
        for (int messages = 0; messages < expected;)
            load.Receive(Load::patienceMs, [&](Client &, int arrived) { messages += arrived; });
        report.Add(Clock::now() - trigger.sentAt);
        report.Count(1);
    }
    report.Print();
}

/// The length and a hash (FNV-1a, 64 bits) of one reply.
void Digest(Load &load, const Options &options)
{
    Client &client = load.Clients().front();
    std::uint64_t hash = 0xcbf29ce484222325u;
    std::uint64_t length = 0;
    Load::Send(client, TextFrame(options.request));
    while (client.messages == 0) {
        load.Receive(
            Load::patienceMs, [](Client &, int) {},
            [&](const char *data, std::size_t size) {
                length += size;
                for (std::size_t i = 0; i < size; ++i)
                    hash = (hash ^ static_cast<unsigned char>(data[i])) * 0x100000001b3u;
            });
    }
    std::printf("{\"length\":%llu,\"hash\":\"%016llx\"}\n", static_cast<unsigned long long>(length),
                static_cast<unsigned long long>(hash));
}

struct Mode {
    const char *name;
    void (*run)(Load &load, const Options &options);
};
const Mode modes[] = {{"pingpong", PingPong}, {"pipeline", Pipeline}, {"push", Push}, {"digest", Digest}};

Options Parse(int argc, char *argv[])
{
    Options options;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string_view name = argv[i];
        const char *const value = argv[i + 1];
        if (name == "--mode")
            options.mode = value;
        else if (name == "--port")
            options.port = static_cast<std::uint16_t>(std::atoi(value));
        else if (name == "--server")
            options.serverPid = std::atoi(value);
        else if (name == "--clients")
            options.clients = std::atoi(value);
        else if (name == "--seconds")
            options.seconds = std::atof(value);
        else if (name == "--count")
            options.count = std::atoi(value);
        else if (name == "--setup")
            options.setup.emplace_back(value);
        else if (name == "--request")
            options.request = value;
    }
    return options;
}

} // namespace

int main(int argc, char *argv[])
{
    const Options options = Parse(argc, argv);
    for (const Mode &mode : modes) {
        if (options.mode != mode.name)
            continue;
        Load load(options.port, options.clients);
        for (const std::string &request : options.setup)
            load.Ask(load.Clients().front(), TextFrame(request));
        mode.run(load, options);
        return EXIT_SUCCESS;
    }
    std::fprintf(stderr,
                 "usage: %s --mode pingpong|pipeline|push|digest --port P --request TEXT [--setup TEXT]... "
                 "[--server PID] [--clients N] [--seconds S] [--count N]\n",
                 argv[0]);
    return EXIT_FAILURE;
}
