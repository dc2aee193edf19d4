/* The native methods of the classes NetLib, ZellogFile and ZelmsgsFile, by the names under which a Java machine looks
   for them. The classes in jni/java declare them; what is said here holds for every Java class that does.

   `exceptionClass` is a Java class with a constructor from a String: failures are thrown as that class. A String may be
   null where it says so. Addresses come as longs, and 0 is none. After an exception nothing is asked of the Java
   machine but to take its strings back. */
#ifndef NLS_JNI_NATIVE_METHODS_H
#define NLS_JNI_NATIVE_METHODS_H

#include <jni.h>

#include "nls/base.h"

NLS_BEGIN_DECLS

/* ---- com.lorvanta.common.util.NetLib: hosts and services by the system's resolver ----

   A look-up answers the address of the C library's own record, which the next look-up of its kind in the process
   overwrites; who reads a field of it does so at once and lets no other thread look up in between. Not found, and a
   null String, are 0 or -1; nothing is thrown but what GetStringUTFChars throws. */

/* The struct hostent of a host, 0 if not found. */
NLS_API jlong JNICALL Java_com_lorvanta_common_util_NetLib_getHostByNameJNI(JNIEnv* env, jobject self,
                                                                            jstring hostName);

/* The official name in a struct hostent; null for 0. */
NLS_API jstring JNICALL Java_com_lorvanta_common_util_NetLib_getHostNameJNI(JNIEnv* env, jobject self, jlong host);

/* The struct servent of a service, 0 if not found. */
NLS_API jlong JNICALL Java_com_lorvanta_common_util_NetLib_getServByNameJNI(JNIEnv* env, jobject self, jstring service,
                                                                            jstring protocol);

/* The port in a struct servent, 0 to 65535; -1 for 0. */
NLS_API jint JNICALL Java_com_lorvanta_common_util_NetLib_getPortNumberJNI(JNIEnv* env, jobject self, jlong serv);

/* The port of a service, -1 if not found, in one call. */
NLS_API jint JNICALL Java_com_lorvanta_common_util_NetLib_getPortNumByNameJNI(JNIEnv* env, jobject self,
                                                                              jstring service, jstring protocol);

/* ---- com.lorvanta.common.util.ZellogFile: the log file of a database ----

   A context belongs to one thread at a time. */

/* Opens the log of a database, or with `create` 1 makes it. The context, or 0: with an exception, and without one where
   its memory can't be had. */
NLS_API jlong JNICALL Java_com_lorvanta_common_util_ZellogFile_juLogOpen(JNIEnv* env, jobject self,
                                                                         jclass exceptionClass, jstring database,
                                                                         jboolean create);

/* Writes one message; either text may be null. `flag` is true for 1 alone. */
NLS_API void JNICALL Java_com_lorvanta_common_util_ZellogFile_juLogWrite(JNIEnv* env, jobject self,
                                                                         jclass exceptionClass, jlong context,
                                                                         jstring text1, jstring text2, jboolean flag);

/* Closes a log and releases its context. 0 is handed on and nothing is released. `exceptionClass` isn't read. */
NLS_API void JNICALL Java_com_lorvanta_common_util_ZellogFile_juLogClose(JNIEnv* env, jobject self,
                                                                         jclass exceptionClass, jlong context);

/* ---- com.lorvanta.common.util.ZelmsgsFile: messages, in the charset of their file, as Java's text ----

   A context belongs to one thread at a time. It holds the message file, convmap.cp and some memory until it is closed.
   */

/* Opens the message file `fileName`, or with null the one of `locale`, a text of three characters. The context, or 0:
   with an exception, and without one where the memory for the file's charset doesn't suffice or its conversion fails
   for a reason that has no text. After a failure nothing stays open. A warning goes to the static method `ps` of
   com/lorvanta/halvane/common/Tools; if that throws, the open has failed.
   A warning about the name of a locale's file, which leaves nothing to open, is thrown. */
NLS_API jlong JNICALL Java_com_lorvanta_common_util_ZelmsgsFile_juZlmOpen(JNIEnv* env, jobject self,
                                                                          jclass exceptionClass, jstring fileName,
                                                                          jstring locale);

/* A message, or null with an exception. What isn't well-formed in it stands as U+FFFD. */
NLS_API jstring JNICALL Java_com_lorvanta_common_util_ZelmsgsFile_juZlmLookup(JNIEnv* env, jobject self,
                                                                              jclass exceptionClass, jlong context,
                                                                              jint number);

/* Closes a message file and releases its context. 0 does nothing. `exceptionClass` isn't read. */
NLS_API void JNICALL Java_com_lorvanta_common_util_ZelmsgsFile_juZlmClose(JNIEnv* env, jobject self,
                                                                          jclass exceptionClass, jlong context);

NLS_END_DECLS

#endif
