/* For running the device binary on a PC: a PC kernel has no hybrid-bridge
 * netlink families (25, 26), so their sockets are made NETLINK_USERSOCK
 * sockets, which open and bind but never carry a message.
 * Build: cc -shared -fPIC -o netlink-preload.so tools/netlink-preload.c -ldl
 * Use:   LD_PRELOAD=./netlink-preload.so lynd ... */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <linux/netlink.h>
#include <stddef.h>
#include <sys/socket.h>

int socket(int domain, int type, int protocol) {
    static int (*real_socket)(int, int, int);
    if (real_socket == NULL)
        real_socket = (int (*)(int, int, int))dlsym(RTLD_NEXT, "socket");
    if (domain == AF_NETLINK && (protocol == 25 || protocol == 26))
        protocol = NETLINK_USERSOCK;
    return real_socket(domain, type, protocol);
}
