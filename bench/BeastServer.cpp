// The limit of the comparison: one thread of Boost.Beast that answers with a constant of the size that the others
// build. "BeastServer PORT", until standard input ends.

#include <boost/asio.hpp>
#include <boost/beast.hpp>

#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

namespace boost {
// The project is built without exceptions; Boost asks for what to do instead.
void throw_exception(const std::exception &)
{
    std::abort();
}
void throw_exception(const std::exception &, const source_location &)
{
    std::abort();
}
} // namespace boost

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using Tcp = asio::ip::tcp;

const std::string smallReply = R"({"API":"GetSize","Result":"0"})";
std::string largeReply;

int NumberBehind(std::string_view message, std::string_view key)
{
    const std::size_t at = message.find(key);
    return at == std::string_view::npos ? 0 : std::atoi(message.data() + at + key.size());
}

const std::string &ReplyTo(const std::string &message)
{
    if (message.find("InitialDevice?") != std::string::npos)
        largeReply = std::string(static_cast<std::size_t>(NumberBehind(message, "width=")) + 120, 'A');
    return message.find("GetInks") != std::string::npos ? largeReply : smallReply;
}

class Session : public std::enable_shared_from_this<Session>
{
public:
    explicit Session(Tcp::socket &&socket) : m_stream(std::move(socket)) {}

    void Start()
    {
        beast::error_code error;
        m_stream.next_layer().set_option(Tcp::no_delay(true), error);
        m_stream.auto_fragment(false);
        m_stream.async_accept([self = shared_from_this()](beast::error_code failed) {
            if (!failed)
                self->Read();
        });
    }

private:
    void Read()
    {
        m_stream.async_read(m_buffer, [self = shared_from_this()](beast::error_code failed, std::size_t) {
            if (!failed)
                self->Answer();
        });
    }

    void Answer()
    {
        const std::string message = beast::buffers_to_string(m_buffer.data());
        m_buffer.consume(m_buffer.size());
        m_stream.text(true);
        m_stream.async_write(asio::buffer(ReplyTo(message)),
                             [self = shared_from_this()](beast::error_code failed, std::size_t) {
                                 if (!failed)
                                     self->Read();
                             });
    }

    beast::websocket::stream<Tcp::socket> m_stream;
    beast::flat_buffer m_buffer;
};

void Accept(Tcp::acceptor &acceptor)
{
    acceptor.async_accept([&acceptor](beast::error_code failed, Tcp::socket socket) {
        if (!failed)
            std::make_shared<Session>(std::move(socket))->Start();
        Accept(acceptor);
    });
}

} // namespace

int main(int argc, char *argv[])
{
    asio::io_context context(1);
    const auto port = static_cast<unsigned short>(argc > 1 ? std::atoi(argv[1]) : 0);
    Tcp::acceptor acceptor(context, {asio::ip::make_address_v4("127.0.0.1"), port});
    Accept(acceptor);
    asio::posix::stream_descriptor input(context, dup(STDIN_FILENO));
    input.async_wait(asio::posix::stream_descriptor::wait_read, [&context](beast::error_code) { context.stop(); });
    context.run();
    return 0;
}
