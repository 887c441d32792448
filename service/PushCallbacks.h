#pragma once

class WebSocketService;

/// The service that the device callbacks below push through; null when there is none.
extern WebSocketService *g_pWebSocketService;

/// Makes this the service that the callbacks push through. Any thread.
void ReceivePushes(WebSocketService &service);
/// Takes the callbacks from this service, if they have it: no push is on its way to it from then on. Any thread.
void EndPushes(const WebSocketService &service);

/// Callbacks for the device layer, from any thread: the push is handed to the service thread and sent from there, in
/// the order of the calls. The text is copied before the call returns. Without a service they do nothing.
void WebSocketServiceSignPadEventCallback(int nEventID);
void WebSocketServiceSignBase64DataCallback(char *pData);
