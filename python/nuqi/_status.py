"""What calls fail with."""

import enum
import inspect


class Status(enum.IntEnum):
    """
    Name the statuses of nuqi.h.

    What `StatusError.status` is: compare it to tell why a call failed.

    Parameters
    ----------
    value : int
        The number of a status, as C functions return it.

    Attributes
    ----------
    Ok : int
        Success.
    NothingToDo : int
        A warning: a strip of a morphology had no rows to process.
    Unsupported : int
        An enumerated or ranged argument has a value outside its set.
    BadSize : int
        A size or an aperture is out of range, or sizes differ.
    NullPtr : int
        A pointer is null; arrays never are.
    NoMemory : int
        There is not enough memory.
    DivByZero : int
        A sum that would divide is zero.
    BadArg : int
        An argument is outside its range, or arrays overlap.
    BadDataType : int
        A type's number is not 1 (uint8), 2 (int8) or 9 (float32).
    BadStep : int
        A row stride is too small, or no multiple of the element's size; those of arrays are right.
    BadContext : int
        A state was made for another purpose.
    BadCoi : int
        There is no such channel.
    BadChannels : int
        A number of channels that the operation does not know.

    See Also
    --------
    StatusError : What carries one.

    Examples
    --------
    >>> nuqi.Status.BadSize, int(nuqi.Status.BadSize)
    (<Status.BadSize: -9939>, -9939)
    """

    Ok = 0
    NothingToDo = 1
    Unsupported = -5
    BadSize = -9939
    NullPtr = -9941
    NoMemory = -9942
    DivByZero = -9943
    BadArg = -9944
    BadDataType = -9945
    BadStep = -9947
    BadContext = -9950
    BadCoi = -9985
    BadChannels = -9986


# Enum's own signature is that of making further enumerations.
_VALUE = inspect.Parameter("value", inspect.Parameter.POSITIONAL_ONLY)
setattr(Status, "__signature__", inspect.Signature([_VALUE]))


class StatusError(ValueError):
    """
    Tell that a call failed.

    It is a `ValueError`, too, and its text says in a sentence what was wrong with which sizes.

    Parameters
    ----------
    status : int
        One of `Status`.
    function : str
        The name of the function that refused.
    text : str
        What was wrong, in a sentence.

    Attributes
    ----------
    status : Status
        One of the statuses of nuqi.h.
    function : str
        The name of the function that refused.

    See Also
    --------
    Status : What may be wrong.

    Examples
    --------
    >>> try:
    ...     nuqi.pyramid_down(np.zeros((3, 4), np.uint8))
    ... except nuqi.StatusError as error:
    ...     error.function, error.status
    ('pyramid_down', <Status.BadSize: -9939>)
    """

    __module__ = "nuqi"  # as tracebacks call it

    def __init__(self, status: int, function: str, text: str) -> None:
        super().__init__(int(status), function, text)
        self.status = Status(status)
        self.function = function

    def __str__(self) -> str:
        return str(self.args[2])
