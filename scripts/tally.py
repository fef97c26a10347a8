"""Counts what a script expects and what does not hold."""


class Tally:
    def __init__(self):
        self.passed = 0
        self.failed = 0

    def expect(self, holds, complaint):
        if holds:
            self.passed += 1
        else:
            self.failed += 1
            print(f"failed: {complaint}")

    def end(self):
        """Prints the line that the test run counts by; returns the exit code."""
        print(f"{self.passed} passed, {self.failed} failed")
        return 1 if self.failed else 0
