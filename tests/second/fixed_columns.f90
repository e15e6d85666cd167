! Reads the records of a fixed-column history with the format in docs/formats/fixed-columns.md, and
! writes the file again: fixed_columns IN OUT
program fixed_columns
  implicit none
  character(len=1024) :: from, to, line
  character(len=14) :: clock
  character(len=32) :: form
  integer :: first, last, low, high, lines, record, number, i
  real(8) :: relative
  real(8), allocatable :: levels(:)

  call get_command_argument(1, from)
  call get_command_argument(2, to)
  open (10, file=from, status='old', action='read')
  open (11, file=to, status='replace', action='write')
  do i = 1, 16
    call copy()
    if (i == 11) read (line(21:28), '(I8)') first
    if (i == 12) read (line(21:28), '(I8)') last
    if (i == 13) read (line(21:28), '(I8)') low
    if (i == 14) read (line(21:28), '(I8)') high
  end do
  do i = 1, 2  ! other records and comments
    call copy()
    read (line(21:28), '(I8)') lines
    do number = 1, lines
      call copy()
    end do
  end do
  call copy()  ! the headings
  allocate (levels(low:high))
  write (form, '(A,I0,A)') '(I6,A14,F12.3,', high - low + 1, 'F8.2)'
  do record = first, last
    read (10, form) number, clock, relative, levels
    if (number /= record) stop 1
    write (11, form) number, clock, relative, levels
  end do
contains
  subroutine copy()
    read (10, '(A)') line
    write (11, '(A)') trim(line)
  end subroutine copy
end program fixed_columns
