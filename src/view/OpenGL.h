#pragma once

// OpenGL with the functions of version 2.1 and of framebuffer objects declared.
#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES
#endif
#include <GL/gl.h>
#include <GL/glext.h>
