#pragma once

/// Replaces the running process by a fresh start of the program, with the same arguments and process identifier.
/// Does so once in a process's life; returns when that start has been made already or cannot be made. Any thread.
void StartOver();

/// Whether this is such a fresh start. Any thread.
bool HasStartedOver();
