// The JNI functions of the regular members: each converts its arguments,
// calls the C function of the same member and converts the result. Written
// by scripts/generate_interface.py; change interface/TavuroCommon.json, not
// this file.
#include <jni.h>

#include "JniSupport.h"
#include "TavuroCommon/TavuroCommon_c.h"

// NOLINTBEGIN
// BEGIN generated from interface/TavuroCommon.json: wrappers
extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroInitializer_nRelease(
    JNIEnv* /*env*/, jclass /*unused*/, jlong handle) {
  tavuro_TavuroInitializer_release(tavuro_jni::handle<tavuro_TavuroInitializer>(handle));
}

extern "C" JNIEXPORT jlong JNICALL
Java_com_tavuro_common_TavuroInitializer_nInit(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_TavuroInitializer_init());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Credential_nUsername(JNIEnv* env,
                                                                              jclass /*unused*/,
                                                                              jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Credential_username());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Credential_nPassword(JNIEnv* env,
                                                                              jclass /*unused*/,
                                                                              jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Credential_password());
}

extern "C" JNIEXPORT jint JNICALL
Java_com_tavuro_common_Credential_nSubscription(JNIEnv* env, jclass /*unused*/, jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Credential_subscription());
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Credential_nEndpoints(JNIEnv* /*env*/,
                                                                                jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_Credential_endpoints());
}

extern "C" JNIEXPORT jboolean JNICALL
Java_com_tavuro_common_Credential_nRemoveToken(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_Credential_removeToken() ? JNI_TRUE : JNI_FALSE;
}

extern "C" JNIEXPORT jboolean JNICALL Java_com_tavuro_common_Credential_nSetTokenWithToken(
    JNIEnv* env, jclass /*unused*/, jstring token) {
  const tavuro_jni::Text token_text(env, token);
  if (token_text.failed()) return JNI_FALSE;
  return tavuro_Credential_setTokenWithToken(token_text.get()) ? JNI_TRUE : JNI_FALSE;
}

extern "C" JNIEXPORT jboolean JNICALL
Java_com_tavuro_common_Credential_nIsCredentialValidWithEndpoint(JNIEnv* env, jclass /*unused*/,
                                                                 jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return JNI_FALSE;
  return tavuro_Credential_isCredentialValidWithEndpoint(endpoint_text.get()) ? JNI_TRUE
                                                                              : JNI_FALSE;
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Credential_nGetTavuroAuthHeader(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Credential_getTavuroAuthHeader());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Credential_nGetBasicAuthHeader(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Credential_getBasicAuthHeader());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Credential_nSetUsernameWithUsername(
    JNIEnv* env, jclass /*unused*/, jstring username) {
  const tavuro_jni::Text username_text(env, username);
  if (username_text.failed()) return;
  tavuro_Credential_setUsernameWithUsername(username_text.get());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Credential_nSetPasswordWithPassword(
    JNIEnv* env, jclass /*unused*/, jstring password) {
  const tavuro_jni::Text password_text(env, password);
  if (password_text.failed()) return;
  tavuro_Credential_setPasswordWithPassword(password_text.get());
}

extern "C" JNIEXPORT void JNICALL
Java_com_tavuro_common_Credential_nSetSubscriptionWithSubscription(JNIEnv* env, jclass /*unused*/,
                                                                   jstring subscription) {
  const tavuro_jni::Text subscription_text(env, subscription);
  if (subscription_text.failed()) return;
  tavuro_Credential_setSubscriptionWithSubscription(subscription_text.get());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Credential_nSetEndpointsWithEndpoints(
    JNIEnv* /*env*/, jclass /*unused*/, jlong endpoints) {
  tavuro_Credential_setEndpointsWithEndpoints(tavuro_jni::handle<tavuro_Endpoints>(endpoints));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nRelease(JNIEnv* /*env*/,
                                                                            jclass /*unused*/,
                                                                            jlong handle) {
  tavuro_Endpoints_release(tavuro_jni::handle<tavuro_Endpoints>(handle));
}

extern "C" JNIEXPORT jlong JNICALL
Java_com_tavuro_common_Endpoints_nNewInstance(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_Endpoints_newInstance());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Endpoints_nFrmEndpoint(JNIEnv* env,
                                                                                jclass /*unused*/,
                                                                                jbyteArray buffer,
                                                                                jlong handle) {
  return tavuro_jni::putText(
      env, buffer, tavuro_Endpoints_frmEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nSetFrmEndpoint(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return;
  tavuro_Endpoints_setFrmEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle),
                                  endpoint_text.get());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Endpoints_nIdEndpoint(JNIEnv* env,
                                                                               jclass /*unused*/,
                                                                               jbyteArray buffer,
                                                                               jlong handle) {
  return tavuro_jni::putText(
      env, buffer, tavuro_Endpoints_idEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nSetIdEndpoint(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return;
  tavuro_Endpoints_setIdEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle), endpoint_text.get());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Endpoints_nPassiveLivenessEndpoint(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer, jlong handle) {
  return tavuro_jni::putText(
      env, buffer,
      tavuro_Endpoints_passiveLivenessEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nSetPassiveLivenessEndpoint(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return;
  tavuro_Endpoints_setPassiveLivenessEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle),
                                              endpoint_text.get());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Endpoints_nHealthInsuranceEndpoint(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer, jlong handle) {
  return tavuro_jni::putText(
      env, buffer,
      tavuro_Endpoints_healthInsuranceEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nSetHealthInsuranceEndpoint(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return;
  tavuro_Endpoints_setHealthInsuranceEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle),
                                              endpoint_text.get());
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Endpoints_nKelmoEndpoint(JNIEnv* env,
                                                                                  jclass /*unused*/,
                                                                                  jbyteArray buffer,
                                                                                  jlong handle) {
  return tavuro_jni::putText(
      env, buffer, tavuro_Endpoints_kelmoEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Endpoints_nSetKelmoEndpoint(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring endpoint) {
  const tavuro_jni::Text endpoint_text(env, endpoint);
  if (endpoint_text.failed()) return;
  tavuro_Endpoints_setKelmoEndpoint(tavuro_jni::handle<tavuro_Endpoints>(handle),
                                    endpoint_text.get());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroJwtParser_nRelease(JNIEnv* /*env*/,
                                                                                  jclass /*unused*/,
                                                                                  jlong handle) {
  tavuro_TavuroJwtParser_release(tavuro_jni::handle<tavuro_TavuroJwtParser>(handle));
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_TavuroJwtParser_nInit(JNIEnv* /*env*/,
                                                                                jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_TavuroJwtParser_init());
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_TavuroJwtParser_nParseTokenWithJwtToken(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring jwtToken) {
  const tavuro_jni::Text jwtToken_text(env, jwtToken);
  if (jwtToken_text.failed()) return 0;
  return tavuro_jni::toJava(tavuro_TavuroJwtParser_parseTokenWithJwtToken(
      tavuro_jni::handle<tavuro_TavuroJwtParser>(handle), jwtToken_text.get()));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroJwtToken_nRelease(JNIEnv* /*env*/,
                                                                                 jclass /*unused*/,
                                                                                 jlong handle) {
  tavuro_TavuroJwtToken_release(tavuro_jni::handle<tavuro_TavuroJwtToken>(handle));
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_TavuroJwtToken_nInitWithValueExpiration(
    JNIEnv* env, jclass /*unused*/, jstring value, jdouble expiration) {
  const tavuro_jni::Text value_text(env, value);
  if (value_text.failed()) return 0;
  return tavuro_jni::toJava(
      tavuro_TavuroJwtToken_initWithValue_expiration(value_text.get(), expiration));
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_TavuroJwtToken_nValue(JNIEnv* env,
                                                                               jclass /*unused*/,
                                                                               jbyteArray buffer,
                                                                               jlong handle) {
  return tavuro_jni::putText(
      env, buffer, tavuro_TavuroJwtToken_value(tavuro_jni::handle<tavuro_TavuroJwtToken>(handle)));
}

extern "C" JNIEXPORT jdouble JNICALL Java_com_tavuro_common_TavuroJwtToken_nExpiration(
    JNIEnv* /*env*/, jclass /*unused*/, jlong handle) {
  return tavuro_TavuroJwtToken_expiration(tavuro_jni::handle<tavuro_TavuroJwtToken>(handle));
}

extern "C" JNIEXPORT jboolean JNICALL
Java_com_tavuro_common_TavuroJwtToken_nIsValid(JNIEnv* /*env*/, jclass /*unused*/, jlong handle) {
  return tavuro_TavuroJwtToken_isValid(tavuro_jni::handle<tavuro_TavuroJwtToken>(handle))
             ? JNI_TRUE
             : JNI_FALSE;
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroError_nRelease(JNIEnv* /*env*/,
                                                                              jclass /*unused*/,
                                                                              jlong handle) {
  tavuro_TavuroError_release(tavuro_jni::handle<tavuro_TavuroError>(handle));
}

extern "C" JNIEXPORT jlong JNICALL
Java_com_tavuro_common_TavuroError_nNewInstance(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_TavuroError_newInstance());
}

extern "C" JNIEXPORT jlong JNICALL
Java_com_tavuro_common_TavuroError_nInitWithErrorCodeErrorDescription(JNIEnv* env,
                                                                      jclass /*unused*/,
                                                                      jlong errorCode,
                                                                      jstring errorDescription) {
  const tavuro_jni::Text errorDescription_text(env, errorDescription);
  if (errorDescription_text.failed()) return 0;
  return tavuro_jni::toJava(tavuro_TavuroError_initWithErrorCode_errorDescription(
      errorCode, errorDescription_text.get()));
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_TavuroError_nErrorCode(JNIEnv* /*env*/,
                                                                                 jclass /*unused*/,
                                                                                 jlong handle) {
  return tavuro_TavuroError_errorCode(tavuro_jni::handle<tavuro_TavuroError>(handle));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroError_nSetErrorCode(
    JNIEnv* /*env*/, jclass /*unused*/, jlong handle, jlong errorCode) {
  tavuro_TavuroError_setErrorCode(tavuro_jni::handle<tavuro_TavuroError>(handle), errorCode);
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_TavuroError_nErrorDescription(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer, jlong handle) {
  return tavuro_jni::putText(
      env, buffer,
      tavuro_TavuroError_errorDescription(tavuro_jni::handle<tavuro_TavuroError>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_TavuroError_nSetErrorDescription(
    JNIEnv* env, jclass /*unused*/, jlong handle, jstring errorDescription) {
  const tavuro_jni::Text errorDescription_text(env, errorDescription);
  if (errorDescription_text.failed()) return;
  tavuro_TavuroError_setErrorDescription(tavuro_jni::handle<tavuro_TavuroError>(handle),
                                         errorDescription_text.get());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nRelease(JNIEnv* /*env*/,
                                                                        jclass /*unused*/,
                                                                        jlong handle) {
  tavuro_Image_release(tavuro_jni::handle<tavuro_Image>(handle));
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Image_nNewInstance(JNIEnv* /*env*/,
                                                                             jclass /*unused*/) {
  return tavuro_jni::toJava(tavuro_Image_newInstance());
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Image_nDpi(JNIEnv* /*env*/,
                                                                     jclass /*unused*/,
                                                                     jlong handle) {
  return tavuro_Image_dpi(tavuro_jni::handle<tavuro_Image>(handle));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetDpi(JNIEnv* /*env*/,
                                                                       jclass /*unused*/,
                                                                       jlong handle, jlong dpi) {
  tavuro_Image_setDpi(tavuro_jni::handle<tavuro_Image>(handle), dpi);
}

extern "C" JNIEXPORT jlong JNICALL Java_com_tavuro_common_Image_nError(JNIEnv* /*env*/,
                                                                       jclass /*unused*/,
                                                                       jlong handle) {
  return tavuro_jni::toJava(tavuro_Image_error(tavuro_jni::handle<tavuro_Image>(handle)));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetError(JNIEnv* /*env*/,
                                                                         jclass /*unused*/,
                                                                         jlong handle,
                                                                         jlong error) {
  tavuro_Image_setError(tavuro_jni::handle<tavuro_Image>(handle),
                        tavuro_jni::handle<tavuro_TavuroError>(error));
}

extern "C" JNIEXPORT jboolean JNICALL Java_com_tavuro_common_Image_nIsCorrectAspectRatio(
    JNIEnv* /*env*/, jclass /*unused*/, jlong handle) {
  return tavuro_Image_isCorrectAspectRatio(tavuro_jni::handle<tavuro_Image>(handle)) ? JNI_TRUE
                                                                                     : JNI_FALSE;
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetIsCorrectAspectRatio(
    JNIEnv* /*env*/, jclass /*unused*/, jlong handle, jboolean value) {
  tavuro_Image_setIsCorrectAspectRatio(tavuro_jni::handle<tavuro_Image>(handle), value == JNI_TRUE);
}

extern "C" JNIEXPORT jfloat JNICALL Java_com_tavuro_common_Image_nAspectRatio(JNIEnv* /*env*/,
                                                                              jclass /*unused*/,
                                                                              jlong handle) {
  return tavuro_Image_aspectRatio(tavuro_jni::handle<tavuro_Image>(handle));
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetAspectRatio(JNIEnv* /*env*/,
                                                                               jclass /*unused*/,
                                                                               jlong handle,
                                                                               jfloat aspectRatio) {
  tavuro_Image_setAspectRatio(tavuro_jni::handle<tavuro_Image>(handle), aspectRatio);
}

extern "C" JNIEXPORT jboolean JNICALL Java_com_tavuro_common_Image_nIsPassport(JNIEnv* /*env*/,
                                                                               jclass /*unused*/,
                                                                               jlong handle) {
  return tavuro_Image_isPassport(tavuro_jni::handle<tavuro_Image>(handle)) ? JNI_TRUE : JNI_FALSE;
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Image_nSetIsPassport(JNIEnv* /*env*/,
                                                                              jclass /*unused*/,
                                                                              jlong handle,
                                                                              jboolean isPassport) {
  tavuro_Image_setIsPassport(tavuro_jni::handle<tavuro_Image>(handle), isPassport == JNI_TRUE);
}

extern "C" JNIEXPORT jlong JNICALL
Java_com_tavuro_common_DocumentProcessingMode_nProcessingMode(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_DocumentProcessingMode_processingMode();
}

extern "C" JNIEXPORT void JNICALL
Java_com_tavuro_common_DocumentProcessingMode_nSetDataCaptureProcessingMode(JNIEnv* /*env*/,
                                                                            jclass /*unused*/) {
  tavuro_DocumentProcessingMode_setDataCaptureProcessingMode();
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Utils_nDateFieldToDateStringWithDateStr(
    JNIEnv* env, jclass /*unused*/, jbyteArray buffer, jstring dateStr) {
  const tavuro_jni::Text dateStr_text(env, dateStr);
  if (dateStr_text.failed()) return -1;
  return tavuro_jni::putText(env, buffer,
                             tavuro_Utils_dateFieldToDateStringWithDateStr(dateStr_text.get()));
}

extern "C" JNIEXPORT jdouble JNICALL
Java_com_tavuro_common_Utils_nSENTIMAGEQUALITYJPEGCOMPRESSION(JNIEnv* /*env*/, jclass /*unused*/) {
  return tavuro_Utils_SENT_IMAGE_QUALITY_JPEG_COMPRESSION();
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Utils_nSetSENTIMAGEQUALITYJPEGCOMPRESSION(
    JNIEnv* /*env*/, jclass /*unused*/, jdouble quality) {
  tavuro_Utils_setSENT_IMAGE_QUALITY_JPEG_COMPRESSION(quality);
}

extern "C" JNIEXPORT jint JNICALL Java_com_tavuro_common_Utils_nSDKVERSIONCODE(JNIEnv* env,
                                                                               jclass /*unused*/,
                                                                               jbyteArray buffer) {
  return tavuro_jni::putText(env, buffer, tavuro_Utils_SDK_VERSION_CODE());
}

extern "C" JNIEXPORT void JNICALL Java_com_tavuro_common_Utils_nSetSDKVERSIONCODE(
    JNIEnv* env, jclass /*unused*/, jstring versionCode) {
  const tavuro_jni::Text versionCode_text(env, versionCode);
  if (versionCode_text.failed()) return;
  tavuro_Utils_setSDK_VERSION_CODE(versionCode_text.get());
}
// END generated: wrappers
// NOLINTEND
