// What the files *_mac.mm use of the dispatch library, declared as Apple documents it.
#pragma once

using dispatch_queue_t = struct dispatch_queue_s*;
extern "C" dispatch_queue_t dispatch_get_main_queue();
extern "C" void dispatch_async_f(dispatch_queue_t queue, void* context, void (*work)(void*));
