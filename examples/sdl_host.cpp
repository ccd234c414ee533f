// The minimal host's overlay in an SDL2 window. The loop sleeps in SDL_WaitEvent and draws only when
// an event or the overlay calls for a frame. Optional argument: frames to draw before quitting.
#define SDL_MAIN_HANDLED
#include "toolsui.h"

#include <trelvogui/backends/sdl/sdlbackend.h>

#include <GL/gl.h>
#include <SDL.h>

#include <cstdio>
#include <cstdlib>

using namespace GraphicsBase;

int main(int argc, char** argv) {
    const int frames = argc > 1 ? std::atoi(argv[1]) : -1;
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::fprintf(stderr, "SDL could not start: %s\n", SDL_GetError());
        return 1;
    }
    GUI::SDLBackend::RequestOpenGL33();
    SDL_Window* window =
        SDL_CreateWindow("TrelvoGUI SDL host", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, 640, 400,
                         SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    SDL_GLContext context = window ? SDL_GL_CreateContext(window) : nullptr;
    if (!context) {
        std::fprintf(stderr, "no OpenGL 3.3 core window: %s\n", SDL_GetError());
        return 1;
    }
    int w = 0, h = 0;
    SDL_GL_GetDrawableSize(window, &w, &h);
    {
        auto manager = std::make_shared<GUI::GUIManager>();
        if (!manager->Initialize())
            return 1;
        manager->Resize(w, h);
        example::ToolsUI ui(manager, w, h);

        GUI::SDLBackend input(window, context, *manager); // pointer, buttons, wheel, keys, touch, resizes
        bool running = true;
        for (int n = 0; running && n != frames; ++n) {
            SDL_Event event;
            while (running && input.NextEvent(&event)) // false when a frame is due
                if (!input.ProcessEvent(event) && event.type == SDL_QUIT)
                    running = false;
            SDL_GL_GetDrawableSize(window, &w, &h);
            glViewport(0, 0, w, h);
            glClearColor(0.16f, 0.18f, 0.22f, 1.f);
            glClear(GL_COLOR_BUFFER_BIT);
            manager->UpdateLayers();
            manager->Draw();
            SDL_GL_SwapWindow(window);
        }
    } // controls, then the manager, go while the context is current
    SDL_GL_DeleteContext(context);
    SDL_DestroyWindow(window);
    SDL_Quit();
    return 0;
}
