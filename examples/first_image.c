/* The first image: finds a camera, takes one image, and says what it looks like. */
#include <inttypes.h>
#include <ovi/ovi.h>
#include <stdio.h>

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

static int takeImage(uint64_t device, uint64_t stream) {
  uint64_t event = 0;
  void* data = NULL;
  if (failed(oviRegisterEvent(stream, OVI_EVENT_NEW_BUFFER, &event, OVI_MODULE_DATA_STREAM), "register the event"))
    return 1;
  if (failed(oviStartAcquisition(device, OVI_INFINITE_IMAGES), "start"))
    return 1;
  const int noImage = failed(oviWaitForEvent(event, 3000, &data), "wait for an image");
  if (!noImage) {
    oviNewBufferEventData* image = data;
    const uint8_t* pixels = image->event.value;
    printf("frame %" PRIu64 ": %u x %u, pixel format 0x%08X, %" PRIu64 " bytes, first pixel %u\n", image->frameID,
           image->width, image->height, image->pixelFormat, image->event.valueSize, pixels[0]);
    oviReleaseImage(stream, image);
  }
  oviStopAcquisition(device);
  oviUnregisterEvent(event);
  return noImage;
}

int main(void) {
  uint64_t device = 0;
  uint64_t stream = 0;
  oviInit(OVI_LOG_LEVEL_ERROR, NULL, NULL);
  int result = failed(oviDiscoverDevices(&found, 1000, NULL, NULL, 0), "discover");
  if (!result && found.deviceCount == 0) {
    fprintf(stderr, "no camera was found: does GENICAM_GENTL64_PATH name the folder of a producer?\n");
    result = 1;
  }
  if (!result)
    result = failed(oviOpenDevice(found.devices[0].deviceID, &device, 1000, OVI_DEVICE_ACCESS_EXCLUSIVE), "open");
  if (!result)
    result = failed(oviCreateDataStream(device, 0, &stream, 10, 0), "open the stream") || takeImage(device, stream);
  if (stream != 0)
    oviCloseDataStream(stream);
  if (device != 0)
    oviCloseDevice(device);
  oviClose();
  return result;
}
