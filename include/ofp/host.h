/*
 * What the development platform (libofp-host.so) offers beyond platform.h: where the agent listens
 * and who runs it, the agent's side of the start-up, the described switch, interface selection and
 * start-up options. For ofp-agent, ofpctl and tests; none of it exists on a switch.
 *
 * Calls that return int32_t give -1 on failure, set errno and leave a sentence for HOST_LastError.
 * All calls may be used from any thread.
 *
 * Environment:
 *   OFP_RUNTIME_DIR    directory of the socket and lock files, an absolute path
 *   OFP_HOST_CONFIG    TOML file that describes the switch (docs/host-port.md)
 *   OFP_AGENT          the agent's program file
 *   OFP_AGENT_OPTIONS  start-up options that SERVICE_Start hands to the agent, between blanks
 *   OFP_START_TIMEOUT  seconds that a start may take, 10 unless set; "0.5" is allowed
 *   OFP_TRACE          pcapng file that records every datagram; %p in the name is the process id
 */
#ifndef OFP_HOST_H
#define OFP_HOST_H

#include <stddef.h>
#include <stdint.h>

#include "ofp/export.h"

OFP_BEGIN_DECLS

/* The only service there is. */
#define HOST_SERVICE "OFP"

/* ---- Errors ---- */

/* This thread's last error in words, with file, line and key where it concerns the described
 * switch; also of a SOCK_Connect that failed. Never null; empty when nothing failed yet. Valid
 * until this thread's next call. */
const char *HOST_LastError(void);

/* ---- Runtime directory ----
 * $OFP_RUNTIME_DIR, else $XDG_RUNTIME_DIR/ofp, else /run/ofp for root, else an error. Per node it
 * holds a socket, a lock, a start lock and a log: agent.sock, agent.lock, agent.start and agent.log
 * for the system master, agent-N.sock and so on for node N. Lock files are never removed. */

/* Stores the directory's path. A directory that exists must be the user's own and closed to others
 * (mode 0700). With create non-zero a missing one is made (its parent must exist); otherwise a
 * missing one is no error. 0 on success. */
int32_t HOST_GetRuntimeDir(char *path, size_t size, int32_t create);

/* Store the path of the node's socket or log file; the file need not exist. 0 on success. */
int32_t HOST_GetSocketPath(uint16_t node, char *path, size_t size);
int32_t HOST_GetLogPath(uint16_t node, char *path, size_t size);

/* ---- The agent's process ----
 * SERVICE_Start runs `ofp-agent --node N --ready-fd FD` in a session of its own, standard input
 * from /dev/null, output to the log file, working directory /, every other descriptor closed,
 * OFP_RUNTIME_DIR and OFP_HOST_CONFIG as absolute paths in its environment, OFP_TRACE removed. The
 * agent's part:
 *     lock = HOST_LockAgent(node);        and keep it open as long as it lives
 *     listener = HOST_ListenAgent(node);  from here on SERVICE_GetStatus reports it running
 *     write(FD, "ready\n", 6); close(FD); or one line saying why not, then exit: that line becomes
 *                                         HOST_LastError of the starter
 * An agent that is not ready in time is killed by the starter. When an agent ends it leaves the
 * socket file alone: the next agent's may be there already. */

/* Takes the node's lock; creates the runtime directory. The descriptor that holds it; -1 with
 * EWOULDBLOCK when another agent has it. A lock ends with its process or when it is closed. */
int32_t HOST_LockAgent(uint16_t node);

/* With the lock held: removes a stale socket file, binds, listens and marks the lock as serving. A
 * SOCK_SEQPACKET descriptor, non-blocking and close-on-exec, that has SO_PASSCRED set (as accepted
 * ones then have, which HOST_Receive needs). -1 with EPERM when this process lacks the lock. */
int32_t HOST_ListenAgent(uint16_t node);

/* The process that holds the node's lock, serving or not; 0 when there is none, -1 on error. Asked
 * of the kernel, so never stale. */
int32_t HOST_GetAgentPid(uint16_t node);

/* Stores the path of the program that a start would run: $OFP_AGENT, else ../bin/ofp-agent of the
 * folder that holds this library, else the first in PATH. -1 when there is none. */
int32_t HOST_GetAgentProgram(char *path, size_t size);

#define HOST_HANGUP (-2)

/* Receives one datagram on a connection accepted from HOST_ListenAgent, without waiting. Its
 * length, truncated to size, 0 for an empty one; HOST_HANGUP when the peer has closed and all it
 * sent was read; -1 with errno (EAGAIN: nothing queued). Does not set HOST_LastError. */
int64_t HOST_Receive(int32_t s, void *buffer, size_t size);

/* ---- The described switch ----
 * Read once per process, from OFP_HOST_CONFIG or built in. */

typedef struct HostNode {
    uint16_t id;
    uint8_t up;         /* 1: board present and running */
    uint8_t controller; /* 1: controller board */
} HostNode;

typedef struct HostInterface {
    uint32_t index; /* 1 and up */
    uint32_t type;  /* the platform's interface type */
    uint16_t node;  /* board that carries it */
    uint16_t up;    /* 1: link up */
    char name[48];
} HostInterface;

typedef struct HostConfig {
    const char *path; /* file read, "" when built in */
    uint16_t self;
    uint16_t master;
    uint16_t lip;
    uint8_t phase4_over;
    uint8_t bridge_mac[6];
    uint8_t acl_resource[6];
    uint32_t zone;
    uint32_t container;
    const uint32_t *containers; /* zones that are containers */
    const HostNode *nodes;
    const HostInterface *interfaces; /* ascending by index */
    uint32_t container_count;
    uint32_t node_count;
    uint32_t interface_count;
} HostConfig;

/* Lives as long as the process; null when the file is missing or wrong. */
const HostConfig *HOST_GetConfig(void);

/* The interface with this index or name; null when there is none. */
const HostInterface *HOST_FindInterface(uint32_t index);
const HostInterface *HOST_FindInterfaceByName(const char *name);

/* ---- Interface selection: the object behind IF_Select_Init and its kin ---- */

#define HOST_IF_ITEM_TYPE 18u /* IF_GetDataByIfIndex: the 32-bit type */

#define HOST_IF_MODE_ALL   1u /* every type */
#define HOST_IF_MODE_TYPES 2u /* the types that were set */

#define HOST_IF_CONDITION_NONE    0u
#define HOST_IF_CONDITION_PRESENT 10u /* the interface's node is up */

typedef struct HostIfSelection {
    uint32_t mode;
    uint32_t condition;
    uint32_t types[8]; /* one bit per type, 0 to 255 */
} HostIfSelection;

/* Stores up to capacity indexes of selected interfaces in the order of their names; returns how
 * many are selected. 0 with a sentence in HOST_LastError when the selection was not initialised or
 * the switch cannot be read. */
uint32_t HOST_GetSelectedInterfaces(const HostIfSelection *selection, uint32_t *indexes,
                                    uint32_t capacity);

/* ---- Start-up options ----
 * OPT_ParseEx(int *argc, char **argv, table, count) reads argv[1] to argv[*argc - 1], which must
 * all be options of the table: --Name=value or --Name value, decimal or 0x hexadecimal, the last
 * one of a name counts. A program with options of its own takes those out first. Nothing is stored
 * unless everything is right; HOST_LastError names the culprit. */

OFP_END_DECLS

#endif
