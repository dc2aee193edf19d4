package com.lorvanta.common.util;

import java.util.Objects;
import java.util.Optional;
import java.util.OptionalInt;

/** Hosts and services by the system's resolver, for any number of threads. */
public final class Resolver {
    private static final NetLib NATIVE = new NetLib();

    private Resolver() {}

    /** The official name of a host. */
    public static Optional<String> officialName(String host) {
        Objects.requireNonNull(host, "host");
        // The record is read before another look-up may overwrite it.
        synchronized (NATIVE) {
            return Optional.ofNullable(NATIVE.getHostNameJNI(NATIVE.getHostByNameJNI(host)));
        }
    }

    /** The port of a service, such as "http" by "tcp". */
    public static OptionalInt port(String service, String protocol) {
        Objects.requireNonNull(service, "service");
        Objects.requireNonNull(protocol, "protocol");
        int port;
        synchronized (NATIVE) {
            port = NATIVE.getPortNumByNameJNI(service, protocol);
        }
        return port < 0 ? OptionalInt.empty() : OptionalInt.of(port);
    }
}
