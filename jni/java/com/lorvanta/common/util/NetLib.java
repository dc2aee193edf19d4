package com.lorvanta.common.util;

/**
 * Hosts and services by the system's resolver, as the native library has them. A look-up returns the address of a
 * record that the next look-up of its kind in the process overwrites. {@link Resolver} takes care of that.
 */
public class NetLib {
    static {
        NativeLibrary.load();
    }

    /** Address of the record of a host; 0 if it isn't found. */
    public native long getHostByNameJNI(String hostName);

    /** The official name in the record of a host; null for 0. */
    public native String getHostNameJNI(long host);

    /** Address of the record of a service; 0 if it isn't found. */
    public native long getServByNameJNI(String service, String protocol);

    /** The port in the record of a service, 0 to 65535; -1 for 0. */
    public native int getPortNumberJNI(long serv);

    /** The port of a service, 0 to 65535; -1 if it isn't found. */
    public native int getPortNumByNameJNI(String service, String protocol);
}
