// A program that does not end in time.
#include <chrono>
#include <thread>

int main() {
    std::this_thread::sleep_for(std::chrono::minutes(2));
}
