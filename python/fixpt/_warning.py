"""The warning class of the library's reports."""


class FixedPointWarning(UserWarning):
    """A report of the library: its text exactly, as the firmware's host gets it.

    ``str(warning)`` is the library's message; ``signature`` is the signature
    text of the reporting routine, the text the host's log filters match.
    """

    def __init__(self, message, signature=""):
        super().__init__(message)
        self.signature = signature
