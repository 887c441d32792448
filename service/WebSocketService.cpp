#include "service/WebSocketService.h"

#include "base/JsonText.h"
#include "base/Logging.h"
#include "base/QtCompat.h"
#include "device/InkJson.h"
#include "device/SignObjManager.h"
#include "sdk/SdkNumbers.h"
#include "service/ClientAdmission.h"
#include "service/ClientConnections.h"
#include "service/CommandTable.h"
#include "service/PushCallbacks.h"
#include "service/RunCommand.h"
#include "service/ServiceStatusSource.h"

#include <QHostAddress>
#include <QTcpServer>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketCorsAuthenticator>
#include <QWebSocketServer>

#include <cstdio>
#include <utility>

namespace {

/// Bytes that hold the reply of most commands.
constexpr int nSmallReply = 128;

/// Bytes of a message. A text of Qt holds little more; making a longer one would end the program.
constexpr quint64 nLongestMessage = 1000000000;

/// How long the changes of the status are gathered.
constexpr int nStatusDelayMs = 100;

/// In UTF-8, as it is sent.
QByteArray ReplyEnvelope(const QString &strAPI, const QString &strResult)
{
    QByteArray reply;
    reply.reserve(nSmallReply);
    reply += "{\"API\":";
    AppendJsonString(reply, strAPI);
    reply += ",\"Result\":";
    AppendJsonString(reply, strResult);
    reply += '}';
    return reply;
}

} // namespace

WebSocketService::WebSocketService(quint16 port, QObject *parent, AccessPolicy accessPolicy,
                                   ServiceStatusSource *pStatusSource, OriginDesk *pOriginDesk)
    : QObject(parent), m_pWebSocketServer(new QWebSocketServer(QStringLiteral("MVSignPadSDK - WebSocketServer"),
                                                               QWebSocketServer::NonSecureMode, this)),
      m_nPort(port), m_accessPolicy(std::move(accessPolicy)), m_pStatusTimer(new QTimer(this)),
      m_pStatusSource(pStatusSource)
{
    static const char tag[] = "WebSocketService::WebSocketService()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, m_nPort=%d", m_nPort);
    m_WPSSettings.LoadWPSSettingsFromConfigureFile();
    m_pStatusTimer->setSingleShot(true);
    m_pStatusTimer->setInterval(nStatusDelayMs);
    connect(m_pStatusTimer, &QTimer::timeout, this, &WebSocketService::TellStatus);
    if (Listen()) {
        connect(m_pWebSocketServer, &QWebSocketServer::newConnection, this, &WebSocketService::onNewConnection);
        connect(m_pWebSocketServer, &QWebSocketServer::closed, this, &WebSocketService::closed);
        m_strServiceUrl = QStringLiteral("%1%2%3")
                              .arg(QStringLiteral("ws://localhost:"))
                              .arg(port)
                              .arg(QStringLiteral("/MVSignSDK/"));
        OpenDoors(pOriginDesk);
        SetupMVSignPadSDKAPINameList();
        m_pSignObjMgr = std::make_unique<SignObjManager>(m_accessPolicy.saveFolders);
        MV_LOG_INSIDE_THREAD(tag, "m_pSignObjMgr=%lx", reinterpret_cast<unsigned long>(m_pSignObjMgr.get()));
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

WebSocketService::~WebSocketService()
{
    static const char tag[] = "WebSocketService::~WebSocketService()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    EndPushes(*this);
    const QList<QWebSocket *> clients = findChildren<QWebSocket *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWebSocket *pClient : clients) { // also those who wait to be let in, or were not
        pClient->disconnect(this);        // closing it would otherwise edit the list that is being walked
        delete pClient;
    }
    m_pSignObjMgr.reset();
    m_pWebSocketServer->close();
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

bool WebSocketService::Listen()
{
    m_status.nPort = m_nPort;
    m_status.strAddress = m_accessPolicy.listenAddress ? m_accessPolicy.listenAddress->toString() : QStringLiteral("*");
    if (!m_accessPolicy.bServesAnybody) {
        m_status.state = ServiceStatus::ClosedBySettings;
        m_status.strReason = m_accessPolicy.strClosedReason;
        return false;
    }
    // By default every interface, although the URL that it serves says "localhost": on purpose.
    const bool bListening =
        m_pWebSocketServer->listen(m_accessPolicy.listenAddress.value_or(QHostAddress::Any), m_nPort);
    NoteListening(bListening);
    if (!bListening && m_accessPolicy.listenAddress)
        std::fprintf(stderr,
                     "mvsignpadsdk_wssvr: the service stays closed: it cannot listen at the ListenAddress: %s\n",
                     m_pWebSocketServer->errorString().toLocal8Bit().constData());
    return bListening;
}

void WebSocketService::NoteListening(bool bListening)
{
    if (bListening) {
        m_status.state = ServiceStatus::Listening;
        return;
    }
    const auto *const pSocket = m_pWebSocketServer->findChild<QTcpServer *>();
    const bool bTaken = pSocket != nullptr && pSocket->serverError() == QAbstractSocket::AddressInUseError;
    m_status.state = bTaken ? ServiceStatus::PortTaken : ServiceStatus::ClosedBySettings;
    m_status.strReason = m_pWebSocketServer->errorString();
}

void WebSocketService::TellStatus()
{
    if (!m_pStatusSource)
        return;
    ServiceStatus status = m_status;
    status.clients.reserve(m_clients.size());
    for (const QWebSocket *pClient : qAsConst(m_clients))
        status.clients.append(
            {pClient->origin(),
             QStringLiteral("%1 %2").arg(pClient->peerAddress().toString()).arg(pClient->peerPort())});
    if (m_pSignObjMgr)
        status.pad = m_pSignObjMgr->Status();
    Q_EMIT m_pStatusSource->statusChanged(status);
}

void WebSocketService::TellStatusSoon()
{
    if (!m_pStatusTimer->isActive())
        m_pStatusTimer->start();
}

void WebSocketService::OpenDoors(OriginDesk *pOriginDesk)
{
    m_pConnections = new ClientConnections(m_pWebSocketServer);
    m_pAdmission = new ClientAdmission(m_accessPolicy, pOriginDesk, *m_pConnections, this);
    connect(m_pWebSocketServer, &QWebSocketServer::originAuthenticationRequired, m_pAdmission,
            [this](QWebSocketCorsAuthenticator *pAuthenticator) {
                pAuthenticator->setAllowed(m_pAdmission->AcceptsHandshake(pAuthenticator->origin()));
            });
    connect(m_pAdmission, &ClientAdmission::admitted, this, [this](QWebSocket *pClient) {
        m_clients.append(pClient);
        TellStatusSoon();
    });
}

void WebSocketService::SetupMVSignPadSDKAPINameList()
{
    static const char tag[] = "WebSocketService::SetupMVSignPadSDKAPINameList()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    for (const Command &command : commandTable)
        m_APINameList.append(QString::fromLatin1(command.szName));
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::onNewConnection()
{
    static const char tag[] = "WebSocketService::onNewConnection()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    QWebSocket *const pClient = m_pWebSocketServer->nextPendingConnection();
    if (pClient && !m_pConnections->Add(pClient)) {
        delete pClient; // it was gone before its handshake could be answered
    } else if (pClient) {
        pClient->setParent(this); // so that it changes threads with the service
        connect(pClient, &QWebSocket::textMessageReceived, this, &WebSocketService::processTextMessage);
        connect(pClient, &QWebSocket::binaryMessageReceived, this, &WebSocketService::processBinaryMessage);
        connect(pClient, &QWebSocket::disconnected, this, &WebSocketService::socketDisconnected);
        LimitIncomingMessages(*pClient, nLongestMessage);
        m_pAdmission->Enter(pClient);
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::socketDisconnected()
{
    static const char tag[] = "WebSocketService::socketDisconnected()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    if (QWebSocket *pClient = qobject_cast<QWebSocket *>(sender())) {
        m_clients.removeAll(pClient);
        TellStatusSoon();
        m_pAdmission->Leave(pClient);
        m_pConnections->Remove(pClient);
        pClient->deleteLater();
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::processTextMessage(QString message)
{
    static const char tag[] = "WebSocketService::processTextMessage()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, message.length=%d", message.size());
    if (QWebSocket *pClient = qobject_cast<QWebSocket *>(sender()))
        m_pConnections->SendReply(pClient, MessageKind::Text, ProcessMVSignSDKWebSocketAPICommand(message));
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::processBinaryMessage(QByteArray message)
{
    static const char tag[] = "WebSocketService::processBinaryMessage()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, message=%s", message.constData());
    if (QWebSocket *pClient = qobject_cast<QWebSocket *>(sender()))
        m_pConnections->SendReply(pClient, MessageKind::Binary, message);
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

int WebSocketService::RecognisedCommand(const QString &strMsg) const
{
    if (!strMsg.startsWith(m_strServiceUrl))
        return -1;
    const QStringRef call = strMsg.midRef(m_strServiceUrl.size());
    if (call.isEmpty())
        return -1;
    for (int i = 0; i < m_APINameList.size(); ++i) {
        const QString &name = m_APINameList.at(i);
        if (call.at(0) == name.at(0) && call.startsWith(name)) // whatever follows the name is not looked at
            return i;
    }
    return -1;
}

QByteArray WebSocketService::ProcessMVSignSDKWebSocketAPICommand(const QString &strMsg)
{
    static const char tag[] = "WebSocketService::ProcessMVSignSDKWebSocketAPICommand()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, strMsg.length=%d", strMsg.size());
    // One reply for whatever is wrong, without the command's name, on purpose.
    QString strAPI = QStringLiteral("Invalid API request");
    QString strResult = QStringLiteral("-1");
    const int nCommand = RecognisedCommand(strMsg);
    if (nCommand >= 0) {
        MV_LOG_INSIDE_THREAD(tag, "Rx Cmd: %s", commandTable[nCommand].szLogName);
        if (std::optional<QString> result = RunCommand(nCommand, *this, strMsg)) {
            strAPI = m_APINameList.at(nCommand);
            strResult = std::move(*result);
        }
        if (m_pSignObjMgr->TakeStatusChange())
            TellStatusSoon();
    }
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
    return ReplyEnvelope(strAPI, strResult);
}

void WebSocketService::ProcessSignPadEvent(int nEventID)
{
    static const char tag[] = "WebSocketService::ProcessSignPadEvent()";
    MV_LOG_INSIDE_THREAD(tag, "Enter, nEventID=%d", nEventID);
    const char *const loggedEvent = nEventID == sdk::SIGNPAD_ENTER_BUTTON    ? "nEventID == SIGNPAD_ENTER_BUTTON..."
                                    : nEventID == sdk::SIGNPAD_CANCEL_BUTTON ? "nEventID == SIGNPAD_CANCEL_BUTTON..."
                                                                             : nullptr;
    // The same message as the reply of the command: a client tells a push by not having asked, on purpose.
    SendToAllClients(ReplyEnvelope(QStringLiteral("GetDeviceConfirmOrCancelKeyStatus"), QString::number(nEventID)), tag,
                     loggedEvent);
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::ProcessSignBase64Data(const QByteArray &data)
{
    static const char tag[] = "WebSocketService::ProcessSignBase64Data()";
    MV_LOG_INSIDE_THREAD(tag, "Enter...");
    if (!data.isNull()) // under the name of the command for pictures, on purpose
        SendToAllClients(ReplyEnvelope(QStringLiteral("GetInks"), ImageReply(ImageEvent::Ink, QString::fromUtf8(data))),
                         tag, nullptr);
    MV_LOG_INSIDE_THREAD(tag, "Leave !");
}

void WebSocketService::SendToAllClients(const QByteArray &responseMsg, const char *tag, const char *loggedEvent)
{
    const QList<QWebSocket *> clients = m_clients; // a send that fails takes its client off the list
    for (int i = 0; i < clients.size(); ++i) {
        QWebSocket *const pClient = clients.at(i);
        if (loggedEvent)
            MV_LOG_INSIDE_THREAD(tag, "%s", loggedEvent);
        m_pConnections->SendPush(pClient, responseMsg);
        MV_LOG_INSIDE_THREAD(tag, "after call pClient->sendTextMessage(strResponseMsg), i = %d", i);
    }
}
