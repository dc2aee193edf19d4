// Hosts and services. The resolver's records are handed to Java as addresses.
#include <netdb.h>

#include "jni/jni_text.hpp"
#include "jni/native_methods.h"

namespace {

jlong asLong(const void* record) {
    return reinterpret_cast<jlong>(record);
}

// The port of a record, from network order; -1 for null.
jint portOf(const servent* service) {
    return service == nullptr ? -1 : __builtin_bswap16(static_cast<uint16_t>(service->s_port));
}

// Null if it isn't found, and where Java can't give a name.
const servent* findService(JNIEnv* env, jstring service, jstring protocol) {
    if (service == nullptr || protocol == nullptr) return nullptr;
    const nls::BorrowedText serviceName{env, service};
    if (serviceName.failed()) return nullptr;
    const nls::BorrowedText protocolName{env, protocol};
    if (protocolName.failed()) return nullptr;
    return getservbyname(serviceName.get(), protocolName.get());
}

}  // namespace

jlong Java_com_lorvanta_common_util_NetLib_getHostByNameJNI(JNIEnv* env, jobject, jstring hostName) {
    const nls::BorrowedText name{env, hostName};
    return name.get() == nullptr ? 0 : asLong(gethostbyname(name.get()));
}

jstring Java_com_lorvanta_common_util_NetLib_getHostNameJNI(JNIEnv* env, jobject, jlong host) {
    return host == 0 ? nullptr : nls::newString(env, reinterpret_cast<const hostent*>(host)->h_name);
}

jlong Java_com_lorvanta_common_util_NetLib_getServByNameJNI(JNIEnv* env, jobject, jstring service, jstring protocol) {
    return asLong(findService(env, service, protocol));
}

jint Java_com_lorvanta_common_util_NetLib_getPortNumberJNI(JNIEnv*, jobject, jlong serv) {
    return portOf(reinterpret_cast<const servent*>(serv));
}

jint Java_com_lorvanta_common_util_NetLib_getPortNumByNameJNI(JNIEnv* env, jobject, jstring service, jstring protocol) {
    return portOf(findService(env, service, protocol));
}
