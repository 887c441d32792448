#pragma once

#include "service/AccessPolicy.h"
#include "service/ServiceStatus.h"
#include "service/WpsSettings.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

class ClientAdmission;
class ClientConnections;
class QWebSocket;
class QTimer;
class QWebSocketServer;
class OriginDesk;
class ServiceStatusSource;
class SignObjManager;

/// The WebSocket server: takes each request of its clients through the command table to the pad and replies to the
/// sender. Lives on the service thread; requests are handled one at a time, to completion.
class WebSocketService : public QObject
{
    Q_OBJECT

public:
    /// Listens where the policy says. When the port cannot be had the object exists, but serves nobody.
    /// Status source and desk, which the caller keeps, outlive the service; without a desk nobody can be asked.
    explicit WebSocketService(quint16 port, QObject *parent = nullptr, AccessPolicy accessPolicy = {},
                              ServiceStatusSource *pStatusSource = nullptr, OriginDesk *pOriginDesk = nullptr);
    /// Deletes the clients first, then the manager, which closes the pad, then stops listening.
    ~WebSocketService() override;

    /// Null when listening failed.
    SignObjManager *Manager() const { return m_pSignObjMgr.get(); }
    _STRUCT_WPS_SETTINGS_INIDATA &WPSSettings() { return m_WPSSettings; }

    /// Sends a key event to every client, in the order in which they connected.
    Q_INVOKABLE void ProcessSignPadEvent(int nEventID);
    /// Sends a picture in base64 to every client, in the order in which they connected; nothing when it is null.
    Q_INVOKABLE void ProcessSignBase64Data(const QByteArray &data);

    /// Has the status source tell of the service as it is now.
    void TellStatus();

Q_SIGNALS:
    void closed();

private Q_SLOTS:
    void onNewConnection();
    void processTextMessage(QString message);
    void processBinaryMessage(QByteArray message);
    void socketDisconnected();

private:
    bool Listen();
    void NoteListening(bool bListening);
    /// After a change, but not for each of many.
    void TellStatusSoon();
    void OpenDoors(OriginDesk *pOriginDesk);
    void SetupMVSignPadSDKAPINameList();
    int RecognisedCommand(const QString &strMsg) const;
    QByteArray ProcessMVSignSDKWebSocketAPICommand(const QString &strMsg);
    void SendToAllClients(const QByteArray &responseMsg, const char *tag, const char *loggedEvent);

    _STRUCT_WPS_SETTINGS_INIDATA m_WPSSettings;
    QWebSocketServer *m_pWebSocketServer;        // child of the service
    ClientConnections *m_pConnections = nullptr; // child of the server; null when listening failed
    ClientAdmission *m_pAdmission = nullptr;     // child; likewise
    QList<QWebSocket *> m_clients;               // owned, in the order of connection
    quint16 m_nPort;
    AccessPolicy m_accessPolicy;
    QString m_strServiceUrl; // what every request must begin with
    QStringList m_APINameList;
    ServiceStatus m_status; // but for what changes while it listens
    QTimer *m_pStatusTimer; // child
    ServiceStatusSource *m_pStatusSource;
    std::unique_ptr<SignObjManager> m_pSignObjMgr;
};
