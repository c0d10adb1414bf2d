/* Software triggers: the camera takes an image each time that it is told to. */
#include <inttypes.h>
#include <ovi/ovi.h>
#include <stdio.h>

enum { kImages = 5, kTimeoutMs = 3000 };

static oviDiscoveryInfo found; /* 115 KB: not for the stack */

static int failed(oviErr code, const char* what) {
  char text[300];
  if (code == OVI_SUCCESS)
    return 0;
  if (get_error_string(code, text) != 0) /* has the sentence of nearly every code, the other one the name of the rest */
    oviGetErrorDescription(code, text, sizeof(text));
  fprintf(stderr, "%s: %s (%d)\n", what, text, (int)code);
  return 1;
}

static int setEnum(uint64_t device, const char* feature, const char* entry) {
  return failed(oviSetFeatureEnum(device, feature, entry, OVI_MODULE_REMOTE_DEVICE), feature);
}

static int useSoftwareTrigger(uint64_t device) {
  return setEnum(device, "TriggerSelector", "FrameStart") || setEnum(device, "TriggerSource", "Software") ||
         setEnum(device, "TriggerMode", "On");
}

static int takeImages(uint64_t device, uint64_t stream, uint64_t event) {
  for (int i = 0; i < kImages; ++i) {
    void* data = NULL;
    if (failed(oviExecuteCommand(device, "TriggerSoftware", OVI_MODULE_REMOTE_DEVICE), "trigger") ||
        failed(oviWaitForEvent(event, kTimeoutMs, &data), "wait for the image"))
      return 1;
    oviNewBufferEventData* image = data;
    printf("trigger %d: frame %" PRIu64 "\n", i + 1, image->frameID);
    oviReleaseImage(stream, image);
  }
  return 0;
}

static int run(uint64_t device, uint64_t stream) {
  uint64_t event = 0;
  if (useSoftwareTrigger(device) ||
      failed(oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM), "register the event"))
    return 1;
  int result = failed(oviStartAcquisition(device, OVI_INFINITE_IMAGES), "start");
  if (!result) {
    result = takeImages(device, stream, event);
    result |= failed(oviStopAcquisition(device), "stop");
  }
  oviUnregisterEvent(event);
  return result | setEnum(device, "TriggerMode", "Off");
}

int main(void) {
  uint64_t device = 0;
  uint64_t stream = 0;
  oviInit(OVI_LOG_LEVEL_ERROR, NULL, NULL);
  int result = failed(oviDiscoverDevices(&found, 1000, NULL, NULL, 0), "discover");
  if (!result && found.deviceCount == 0) {
    fprintf(stderr, "no camera was found\n");
    result = 1;
  }
  if (!result)
    result = failed(oviOpenDevice(found.devices[0].deviceID, &device, 1000, OVI_DEVICE_ACCESS_EXCLUSIVE), "open");
  if (!result)
    result = failed(oviCreateDataStream(device, 0, &stream, 10, 0), "open the stream") || run(device, stream);
  if (stream != 0)
    oviCloseDataStream(stream);
  if (device != 0)
    oviCloseDevice(device);
  oviClose();
  return result;
}
